#include "meta_analysis/settings/MASettingsWarnings.h"

#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAMeasures.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"
#include "meta_analysis/settings/MAStatusCode.h"

namespace MA_NAMESPACE {

namespace {

struct Run
{
    const MAModelSettings& settings;
    std::size_t studyCount;
};

struct RegressionRun
{
    const MARegSettings& settings;
    bool isRandom;
};

/// A warning, and when it is given.
template <class Subject>
struct Rule
{
    int code;
    bool (*applies)(const Subject&);
};

template <class Subject, std::size_t count>
std::vector<int> CodesOf(const Rule<Subject> (&rules)[count], const Subject& subject)
{
    std::vector<int> codes;
    for (const Rule<Subject>& rule : rules)
        if (rule.applies(subject))
            codes.push_back(rule.code);
    return codes;
}

bool IsFixed(const MAModelSettings& settings)
{
    return settings.GetModelType() == MAConst::MODEL_FIXED;
}

bool IsReadyMade(const Run& run)
{
    return run.settings.GetInputESType() == MAConst::INPUT_READY_MADE;
}

/// NaN is no level.
bool IsConfidenceLevel(double level)
{
    return level > 0.0 && level < 1.0;
}

bool IsKnownModel(MAConst::MODELTYPE type)
{
    return type == MAConst::MODEL_FIXED || type == MAConst::MODEL_RANDOM;
}

bool Iterates(MAConst::TAU2ESTIMATOR estimator, MAConst::TAU2SEARCH search)
{
    return IsIterative(estimator) && search != MAConst::TAU2_SEARCH_GLOBAL;
}

/// Whether the estimator does not have the interval that is asked for.
bool LacksInterval(MAConst::TAU2ESTIMATOR estimator, MAConst::TAU2INTERVAL interval)
{
    return interval == MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD && !HasLikelihood(estimator);
}

/// Whether a model of the run, or of its trimming, estimates tau² by iteration.
bool HasIterations(const MAModelSettings& settings)
{
    const bool trimsByRandom = settings.GetIsTRIMFILL() && settings.GetTFModelType() != MAConst::MODEL_FIXED;
    return (!IsFixed(settings) && Iterates(settings.GetEstTauType(), settings.GetTau2Search())) ||
           (trimsByRandom && Iterates(settings.GetTFEstTauType(), settings.GetTau2Search()));
}

bool IgnoresCommonTau2(const Run& run)
{
    const MAModelSettings& settings = run.settings;
    return settings.GetCommonTau2() &&
           (IsFixed(settings) || settings.GetSubGroupIndex() == -1 || settings.GetCummulativeIndex() != -1);
}

bool HasContrasts(const Run& run)
{
    return !run.settings.GetContrastCoefIndex().empty();
}

constexpr Rule<Run> rulesOfRuns[] = {
    {MAStatusCode::FIXED_MODEL_WITH_CONTRAST,
     [](const Run& run) { return IsFixed(run.settings) && HasContrasts(run); }},
    {MAStatusCode::ONE_STUDY, [](const Run& run) { return run.studyCount == 1; }},
    {MAStatusCode::TWO_STUDIES, [](const Run& run) { return run.studyCount == 2; }},
    {MAStatusCode::READY_MADE_EFFECTS, IsReadyMade},
    {MAStatusCode::READY_MADE_EFFECTS_AGAIN, IsReadyMade},
    {MAStatusCode::CONFIDENCE_LEVEL_OUTSIDE,
     [](const Run& run) { return !IsConfidenceLevel(run.settings.GetCILevel()); }},
    {MAStatusCode::CONTRAST_IGNORED,
     [](const Run& run) { return !IsFixed(run.settings) && HasContrasts(run); }},
    {MAStatusCode::NULL_IGNORED,
     [](const Run& run) { return !IsFixed(run.settings) && run.settings.GetNullHypothesis() != 0.0; }},
    {MAStatusCode::NO_STUDY_IN_RUN, [](const Run& run) { return run.studyCount == 0; }},
    {MAStatusCode::NO_ITERATION_ALLOWED,
     [](const Run& run) { return run.settings.GetMaxIter() < 1 && HasIterations(run.settings); }},
    {MAStatusCode::MODEL_TYPE_UNKNOWN,
     [](const Run& run) {
         return !IsKnownModel(run.settings.GetModelType()) ||
                (run.settings.GetIsTRIMFILL() && !IsKnownModel(run.settings.GetTFModelType()));
     }},
    {MAStatusCode::TAU2_INTERVAL_UNAVAILABLE,
     [](const Run& run) {
         return !IsFixed(run.settings) &&
                LacksInterval(run.settings.GetEstTauType(), run.settings.GetTau2Interval());
     }},
    {MAStatusCode::COMMON_TAU2_IGNORED, IgnoresCommonTau2},
};

/// Whether the null value cannot be a ratio. Tables are pooled with a null value on the ratio scale, on which
/// 0 stands for 1. Ratios that are pooled by inverse variance have theirs on the log scale, where it can be
/// negative.
bool HasImpossibleRatio(const MAModelSettings& settings)
{
    const bool poolsRatios =
        PoolsCounts(settings.GetModelType(), settings.GetWeightType(), settings.GetInputESType()) &&
        IsOnLogScale(settings.GetBinaryEstType());
    return poolsRatios && !(settings.GetNullHypothesis() >= 0.0);
}

constexpr Rule<MAModelSettings> rulesOfBinaryRuns[] = {
    {MAStatusCode::BINARY_FIXED_INVERSE_VARIANCE,
     [](const MAModelSettings& settings) {
         return IsFixed(settings) && settings.GetWeightType() == MAConst::WEIGHT_INVERSE_VARIANCE;
     }},
    {MAStatusCode::BINARY_RANDOM_EFFECTS,
     [](const MAModelSettings& settings) { return settings.GetModelType() == MAConst::MODEL_RANDOM; }},
    {MAStatusCode::RATIO_NULL_NEGATIVE, HasImpossibleRatio},
};

constexpr Rule<MAModelSettings> rulesOfMeasuredRuns[] = {
    {MAStatusCode::COUNTS_NOT_POOLED,
     [](const MAModelSettings& settings) {
         return settings.GetWeightType() == MAConst::WEIGHT_BINARY_FIXED &&
                !PoolsCounts(settings.GetOutcomeMeasure(), settings.GetModelType(), settings.GetWeightType(),
                             settings.GetInputESType());
     }},
};

constexpr Rule<RegressionRun> rulesOfRegressions[] = {
    {MAStatusCode::CONFIDENCE_LEVEL_OUTSIDE,
     [](const RegressionRun& run) { return !IsConfidenceLevel(run.settings.GetConfidenceLevel()); }},
    {MAStatusCode::NO_ITERATION_ALLOWED,
     [](const RegressionRun& run) {
         return run.isRandom && run.settings.GetMaxIterations() < 1 &&
                Iterates(EstimatorOf(run.settings), run.settings.GetTau2Search());
     }},
    {MAStatusCode::TAU2_INTERVAL_UNAVAILABLE,
     [](const RegressionRun& run) {
         return run.isRandom && LacksInterval(EstimatorOf(run.settings), run.settings.GetTau2Interval());
     }},
};

} // namespace

std::vector<int> WarningsOfRun(const MAModelSettings& settings, std::size_t studyCount)
{
    return CodesOf(rulesOfRuns, Run{settings, studyCount});
}

std::vector<int> WarningsOfBinaryRun(const MAModelSettings& settings)
{
    return CodesOf(rulesOfBinaryRuns, settings);
}

std::vector<int> WarningsOfMeasuredRun(const MAModelSettings& settings)
{
    return CodesOf(rulesOfMeasuredRuns, settings);
}

std::vector<int> WarningsOfRegression(const MARegSettings& settings, bool isRandom)
{
    return CodesOf(rulesOfRegressions, RegressionRun{settings, isRandom});
}

} // namespace MA_NAMESPACE
