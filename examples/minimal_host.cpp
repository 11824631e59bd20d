// The smallest host: pools the odds ratios of 13 trials of BCG vaccination against tuberculosis.
// Data: Colditz et al. (1994), JAMA 271, 698-702.

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <cstdio>
#include <vector>

using namespace MA_NAMESPACE;

int main()
{
    // The variables, and which of them holds what; but for the search every other setting keeps its
    // default: odds ratios, random effects by restricted maximum likelihood, 95% intervals.
    KXVarList variables;
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_BINARY);
    // The default, scoring steps, can miss the between-study variance that the estimator defines.
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTreatmentSuccessIndex(variables.AddContVar("vaccinated_cases", "Cases, vaccinated"));
    settings.SetTreatmentFailureIndex(variables.AddContVar("vaccinated_healthy", "Healthy, vaccinated"));
    settings.SetControlSuccessIndex(variables.AddContVar("control_cases", "Cases, not vaccinated"));
    settings.SetControlFailureIndex(variables.AddContVar("control_healthy", "Healthy, not vaccinated"));

    // One row a study, its values in the order of the variables. A host with data of its own derives from
    // MultiPassRecordIter instead and copies nothing.
    const std::vector<std::vector<double>> tables = {
        {4, 119, 11, 128},     {6, 300, 29, 274},      {3, 228, 11, 209},        {62, 13536, 248, 12619},
        {33, 5036, 47, 5761},  {180, 1361, 372, 1079}, {8, 2537, 10, 619},       {505, 87886, 499, 87892},
        {29, 7470, 45, 7232},  {17, 1699, 65, 1600},   {186, 50448, 141, 27197}, {5, 2493, 3, 2338},
        {27, 16886, 29, 17825}};
    VectorRecordIter records(tables);

    MABinModel analysis(settings);
    const KXStatus status = analysis.RUN(records, variables);
    if (status.IsError()) {
        std::fprintf(stderr, "The analysis failed with code %d.\n", status.GetCode());
        return 1;
    }

    // One entry for each fitted model, here one; the natural scale of an odds ratio is the exponentiated one.
    std::printf("Pooled odds ratio of %zu studies: %.4f, 95%% interval %.4f to %.4f\n",
                analysis.GetEffectSize().size(), analysis.GetEstExpEffectSize().front(),
                analysis.GetEstExpCILower().front(), analysis.GetEstExpCIUpper().front());
    std::printf("Between-study variance: %.4f\n", analysis.GetTau2Var().front());
    for (const KXStatus& warning : analysis.GetWarnings())
        std::printf("Warning %d\n", warning.GetCode());
    return 0;
}
