#include "host/report/citation/Methods.h"
#include "host/text/Wording.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

Method Regression(const RegressionData& data)
{
    return {fmt::format("A {} meta-regression of the {} of {} on {} was fitted",
                        data.isRandom ? "random-effects" : "fixed-effect", data.measure.AnalysisName(),
                        CountOfStudies(data.analysis.records.used.size()),
                        fmt::join(data.EffectNames(), ", ")),
            {"Thompson2002"}};
}

Method Conversions(const RegressionData& data)
{
    return data.request.rawEffects ? MethodOfConversions(data.request.rawEffects->notes) : Method();
}

Method Tau2(const RegressionData& data)
{
    return data.isRandom ? MethodOfTau2(data.options.settings.GetEstTauType()) : Method();
}

Method Tau2Interval(const RegressionData& data)
{
    return data.isRandom ? MethodOfTau2Interval(data.request.settings.GetTau2Interval()) : Method();
}

Method Intervals(const RegressionData& data)
{
    const bool isT = data.request.settings.GetTestDistType() == MAConst::TEST_STUDENT_T;
    const MAConst::KNAPPHADJTYPE adjustment =
        data.isRandom ? data.options.settings.GetKnapHartAdjustType() : MAConst::KNAPP_HARTUNG_NONE;
    if (adjustment == MAConst::KNAPP_HARTUNG_NONE && isT)
        return {"Tests and confidence intervals of the coefficients are by Student's t", {}};
    return MethodOfKnappHartung(adjustment);
}

Method Heterogeneity(const RegressionData& /*data*/)
{
    return {"Residual heterogeneity was tested by Cochran's Q and described by I²",
            {"Cochran1954", "Higgins2002"}};
}

Method Clusters(const RegressionData& data)
{
    if (data.output.GetRobustStdError().empty())
        return {};
    const bool isCr2 = data.request.settings.GetSandwich() == MAConst::SANDWICH_CR2;
    return {fmt::format("Coefficients were also tested by cluster-robust variances of {} clusters",
                        data.output.GetRobustClusters()),
            isCr2 ? std::vector<std::string>{"Bell2002", "Tipton2015", "Pustejovsky2018"}
                  : std::vector<std::string>{}};
}

Method Permutations(const RegressionData& data)
{
    if (data.output.GetPermutationSig().empty())
        return {};
    return {
        fmt::format("Coefficients were also tested by {} permutations", data.output.GetPermutationCount()),
        {"Higgins2004"}};
}

Method Influence(const RegressionData& data)
{
    return MethodOfInfluence(data.options.settings);
}

using MethodMaker = Method (*)(const RegressionData&);

constexpr MethodMaker METHODS[] = {
    Regression,    Conversions, Tau2,         Tau2Interval, Intervals, MethodOfLevel<RegressionData>,
    Heterogeneity, Clusters,    Permutations, Influence};

} // namespace

ReportSections MethodsSections(const RegressionData& data)
{
    return SectionsBy(METHODS, data);
}

} // namespace host
