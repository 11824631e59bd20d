// A host with data, progress and a user of its own, as docs/embedding.md explains it piece by piece: risk
// ratios by subgroup, a meta-regression on latitude, a run that the user stops, and one that is set up wrong.
// Data: Colditz et al. (1994), JAMA 271, 698-702.

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXQueryCancel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/common/ProgressListener.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegOutputStats.h"
#include "meta_analysis/regression/design/MAIterator.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

/// A trial as the host keeps it: persons and cases, not the four cells; nothing while a trial is under way.
struct Arm
{
    int cases;
    int persons;
};

struct Trial
{
    const char* author;
    int latitude;
    int allocation; ///< 0 alternate, 1 random, 2 systematic
    std::optional<Arm> vaccinated;
    std::optional<Arm> control;
};

const std::vector<Trial> trials = {{"Aronson", 44, 1, Arm{4, 123}, Arm{11, 139}},
                                   {"Ferguson & Simes", 55, 1, Arm{6, 306}, Arm{29, 303}},
                                   {"Rosenthal et al", 42, 1, Arm{3, 231}, Arm{11, 220}},
                                   {"Hart & Sutherland", 52, 1, Arm{62, 13598}, Arm{248, 12867}},
                                   {"A trial under way", 48, 1, std::nullopt, std::nullopt},
                                   {"Frimodt-Moller et al", 13, 0, Arm{33, 5069}, Arm{47, 5808}},
                                   {"Stein & Aronson", 44, 0, Arm{180, 1541}, Arm{372, 1451}},
                                   {"Vandiviere et al", 19, 1, Arm{8, 2545}, Arm{10, 629}},
                                   {"TPT Madras", 13, 1, Arm{505, 88391}, Arm{499, 88391}},
                                   {"Coetzee & Berjak", 27, 1, Arm{29, 7499}, Arm{45, 7277}},
                                   {"Rosenthal et al", 42, 2, Arm{17, 1716}, Arm{65, 1665}},
                                   {"Comstock et al", 18, 2, Arm{186, 50634}, Arm{141, 27338}},
                                   {"Comstock & Webster", 33, 2, Arm{5, 2498}, Arm{3, 2341}},
                                   {"Comstock et al", 33, 2, Arm{27, 16913}, Arm{29, 17854}}};

/// What the user sees of running work, and the button that stops it. The button may be pressed on another
/// thread than the one that works.
class Session : public KXQueryCancel, public ProgressListener
{
public:
    void Stop() { isStopped_ = true; }
    bool IsStopped() const { return isStopped_; }
    long ReportCount() const { return reportCount_; }

    bool IsCancelled() override { return isStopped_; }
    void Report(long /*done*/, long /*total*/) override { ++reportCount_; }

private:
    std::atomic<bool> isStopped_ = false;
    long reportCount_ = 0;
};

/// Positions of the variables in the list and in every record.
enum Variable : int
{
    VACCINATED_CASES,
    VACCINATED_HEALTHY,
    CONTROL_CASES,
    CONTROL_HEALTHY,
    LATITUDE,
    ALLOCATION,
    VARIABLE_COUNT
};

KXVarList MakeVariables()
{
    KXVarList variables;
    variables.AddContVar("vaccinated_cases", "Cases, vaccinated");
    variables.AddContVar("vaccinated_healthy", "Healthy, vaccinated");
    variables.AddContVar("control_cases", "Cases, not vaccinated");
    variables.AddContVar("control_healthy", "Healthy, not vaccinated");
    variables.AddContVar("latitude", "Latitude");
    variables.AddCatVar("allocation", "Way of allocation");
    return variables;
}

/// Gives the library the trials one by one, in one record that is filled anew each time.
class TrialIterator : public MultiPassRecordIter
{
public:
    explicit TrialIterator(const Session& session) : session_(&session) {}

    bool Start() override
    {
        next_ = 0;
        return record_.Resize(VARIABLE_COUNT);
    }

    bool Reset() override
    {
        next_ = 0;
        return true;
    }

    const Record* Next() override
    {
        if (session_->IsStopped() || next_ == trials.size())
            return nullptr;
        const Trial& trial = trials[next_++];
        FillArm(trial.vaccinated, VACCINATED_CASES, VACCINATED_HEALTHY);
        FillArm(trial.control, CONTROL_CASES, CONTROL_HEALTHY);
        record_.Set(LATITUDE, trial.latitude);
        record_.Set(ALLOCATION, trial.allocation);
        return &record_;
    }

    /// Tells a pass that was stopped from one that came to its end.
    int GetError() const override { return session_->IsStopped() ? 1 : 0; }

private:
    void FillArm(const std::optional<Arm>& arm, Variable cases, Variable healthy)
    {
        record_.Set(cases, arm ? arm->cases : KXMV::Missing());
        record_.Set(healthy, arm ? arm->persons - arm->cases : KXMV::Missing());
    }

    const Session* session_;
    std::size_t next_ = 0;
    Record record_;
};

MAModelSettings RiskRatiosByAllocation()
{
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_BINARY);
    settings.SetBinaryEstType(MAConst::BIN_RISK_RATIO);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTreatmentSuccessIndex(VACCINATED_CASES);
    settings.SetTreatmentFailureIndex(VACCINATED_HEALTHY);
    settings.SetControlSuccessIndex(CONTROL_CASES);
    settings.SetControlFailureIndex(CONTROL_HEALTHY);
    settings.SetSubGroupIndex(ALLOCATION);
    return settings;
}

/// True when the work was done. The library reports a stop by the user as a failure of the data; the host
/// knows which of the two it was.
bool Succeeded(const char* work, const KXStatus& status, const Session& session)
{
    if (!status.IsError())
        return true;
    if (session.IsStopped() && status.GetCode() == MAStatusCode::ITERATOR_FAILED)
        std::printf("%s: stopped\n", work);
    else if (status.GetCode() == MAStatusCode::INPUT_NOT_GIVEN)
        std::printf("%s: a variable is not set (%d)\n", work, status.GetCode());
    else
        std::printf("%s: error %d\n", work, status.GetCode());
    return false;
}

void PrintModels(const MABinModel& analysis)
{
    const std::vector<double> ratio = analysis.GetEstExpEffectSize();
    const std::vector<double> lower = analysis.GetEstExpCILower();
    const std::vector<double> upper = analysis.GetEstExpCIUpper();
    const std::vector<int> studyCount = analysis.GetGroupN();
    const std::vector<double> groups = analysis.GetUniGroup(); // ascending; -1.0, the overall model, is last
    for (std::size_t model = 0; model < ratio.size(); ++model) {
        if (model < studyCount.size())
            std::printf("Allocation %.0f, %d trials", groups[model], studyCount[model]);
        else
            std::printf("All %zu trials", analysis.GetEffectSize().size());
        std::printf(": risk ratio %.4f (%.4f to %.4f)\n", ratio[model], lower[model], upper[model]);
    }
    std::printf("Between the groups: Q = %.4f, df = %d, p = %.4f\n", analysis.GetGDQbVal(),
                analysis.GetGDQbDf(), analysis.GetGDQbSig());
}

void PrintDataUse(const MABinModel& analysis)
{
    std::printf("Trials without data: %d\n", analysis.GetNMissing());
    for (const KXStatus& warning : analysis.GetWarnings())
        std::printf("Warning %d\n", warning.GetCode());
}

/// A per-study result with an entry for each record: missing where the record is no study.
std::vector<double> ByRecord(const MABinModel& analysis, const std::vector<double>& ofStudies)
{
    std::vector<double> byRecord(trials.size(), KXMV::Missing());
    const std::vector<int> recordNumbers = analysis.GetNonMissingStudyID();
    for (std::size_t study = 0; study < recordNumbers.size(); ++study)
        byRecord[static_cast<std::size_t>(recordNumbers[study])] = ofStudies[study];
    return byRecord;
}

MARegSettings RegressionOnLatitude(const MAIterator& studies, Session& session)
{
    MARegSettings settings;
    settings.SetDependent(studies.GetEffectSizeIndex());
    settings.SetOMWVarIndex(studies.GetVarianceIndex());
    settings.SetOMWVarType(MAConst::OMEGA_VARIANCE);
    settings.SetInterceptUse(true);
    settings.AddCovariate(LATITUDE);
    KXModelEffect latitude;
    latitude.AddCovariate(LATITUDE);
    settings.AddModelEffect(latitude);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTestDistType(MAConst::TEST_STANDARD_NORMAL);
    settings.SetCancelObject(&session);
    settings.SetRecProgressListener(&session);
    settings.SetIterProgressListener(&session);
    return settings;
}

/// The log risk ratios of an analysis over the latitude.
void Regress(const MABinModel& analysis, Session& session)
{
    const std::vector<double> effects = ByRecord(analysis, analysis.GetEffectSize());
    const std::vector<double> variances = ByRecord(analysis, analysis.GetVariance());
    TrialIterator records(session);
    MAIterator studies(records, MakeVariables(), effects, variances);
    const MARegSettings settings = RegressionOnLatitude(studies, session);

    MAREAlgorithm engine(settings);
    if (!Succeeded("Regression", engine.BuildModel(studies), session))
        return;
    const MARegOutputStats output(settings, engine);
    std::printf("Slope over latitude: %.4f, standard error %.4f, z = %.2f, R2 = %.1f%%\n",
                output.GetEstimation()[1], output.GetBetaStandErr()[1], output.GetBetaTest()[1],
                100.0 * output.GetRSquare());
    std::printf("Progress was reported: %s\n", session.ReportCount() > 0 ? "yes" : "no");
}

/// The risk in the control groups, as the outcome of one group.
void PrintControlRisk(MultiPassRecordIter& records, const KXVarList& variables)
{
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_MEASURED);
    settings.SetOutcomeMeasure(MAConst::PROPORTION_LOGIT);
    settings.SetEventsIndex(CONTROL_CASES);
    settings.SetNonEventsIndex(CONTROL_HEALTHY);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    MAOutcomeModel risks(settings);
    if (risks.RUN(records, variables).IsError())
        return;
    std::printf("Risk without vaccination: %.4f (%.4f to %.4f)\n", risks.GetNaturalEstEffectSize().back(),
                risks.GetNaturalEstCILower().back(), risks.GetNaturalEstCIUpper().back());
}

} // namespace

int main()
{
    Session session;
    TrialIterator records(session);
    const KXVarList variables = MakeVariables();
    MAModelSettings settings = RiskRatiosByAllocation();
    MABinModel analysis(settings);
    if (!Succeeded("Pooling", analysis.RUN(records, variables), session))
        return 1;
    PrintModels(analysis);
    PrintDataUse(analysis);
    PrintControlRisk(records, variables);
    Regress(analysis, session);

    // The user stops the work; the analysis that was finished before is still there to be read.
    session.Stop();
    Regress(analysis, session);
    MABinModel stopped(settings);
    Succeeded("Pooling", stopped.RUN(records, variables), session);

    // Settings are read during a run, so that a change takes effect with the next one.
    Session another;
    TrialIterator again(another);
    settings.SetControlFailureIndex(-1);
    Succeeded("Pooling", stopped.RUN(again, variables), another);
    return 0;
}
