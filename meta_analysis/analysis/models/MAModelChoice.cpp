#include "meta_analysis/analysis/models/MAModelChoice.h"

#include "meta_analysis/effectsize/MANaturalScale.h"
#include "meta_analysis/settings/MAMeasures.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// A threshold of ratios is given on the natural scale; every ratio is above one that is not positive.
double OnAnalysisScale(double threshold, bool isOnLogScale)
{
    return isOnLogScale && !KXMV::IsMissing(threshold) ? std::log(std::max(threshold, 0.0)) : threshold;
}

} // namespace

MARunSettings RunSettingsOf(const MAModelSettings& settings)
{
    return {settings.GetModelType(), settings.GetEstTauType(), settings.GetKnapHartAdjustType(),
            settings.GetWeightType(), settings.GetInputESType()};
}

void TakeModelTypes(const MAModelSettings& settings, MARunSettings& run)
{
    run.modelType = settings.GetModelType();
    run.estimator = settings.GetEstTauType();
    run.knappHartung = settings.GetKnapHartAdjustType();
}

bool PoolsCounts(const MARunSettings& run, MAConst::OUTCOMETYPE outcome)
{
    return outcome == MAConst::OUTCOME_BINARY && PoolsCounts(run.modelType, run.weightType, run.inputType);
}

bool PoolsCounts(const MARunSettings& run, MAConst::OUTCOMEMEASURE measure)
{
    return PoolsCounts(measure, run.modelType, run.weightType, run.inputType);
}

MAModelChoice EffectsModel(const MAModelSettings& settings, const MARunSettings& run,
                           MAConst::OUTCOMETYPE outcome, double alpha)
{
    const bool isOnLogScale = outcome == MAConst::OUTCOME_BINARY && IsOnLogScale(settings.GetBinaryEstType());
    const bool isThresholdAbove = !KXMV::IsMissing(settings.GetProbabilityAbove());
    MAModelChoice choice;
    choice.type = run.modelType;
    choice.fixed = {settings.GetNullHypothesis(), alpha};
    choice.random.estimator = run.estimator;
    choice.random.knappHartung = run.knappHartung;
    choice.random.limits = {settings.GetMaxIter(), settings.GetMaxStepHalving(),
                            settings.GetConnvergenceTol()};
    choice.random.search = settings.GetTau2Search();
    choice.random.tau2Interval = settings.GetTau2Interval();
    choice.random.prediction = settings.GetPrediction();
    choice.random.threshold = OnAnalysisScale(
        isThresholdAbove ? settings.GetProbabilityAbove() : settings.GetProbabilityBelow(), isOnLogScale);
    choice.random.isThresholdAbove = isThresholdAbove;
    choice.random.checksTau2 = true;
    choice.random.alpha = alpha;
    choice.hasCommonTau2 = settings.GetCommonTau2();
    return choice;
}

MAModelChoice WithNaturalValues(MAModelChoice choice, MAScale scale)
{
    choice.natural = {scale, choice.fixed.nullHypothesis, choice.random.threshold};
    return choice;
}

double NullHypothesisAt(const MAModelChoice& choice, double size)
{
    if (!choice.natural.has_value())
        return choice.fixed.nullHypothesis;
    const double null = choice.natural->nullHypothesis;
    return null == 0.0 ? 0.0 : FromNatural(choice.natural->scale, null, size);
}

MAModelChoice AtSize(MAModelChoice choice, double size)
{
    choice.fixed.nullHypothesis = NullHypothesisAt(choice, size);
    if (choice.natural.has_value())
        choice.random.threshold = FromNatural(choice.natural->scale, choice.natural->threshold, size);
    return choice;
}

MAModelChoice TrimmingModel(const MAModelSettings& settings, MAModelChoice choice)
{
    choice.type = settings.GetTFModelType();
    choice.random.estimator = settings.GetTFEstTauType();
    choice.random.knappHartung = settings.GetTFKnapHartAdjustType();
    return ModelOfStep(choice);
}

MAModelChoice WithoutTau2Interval(MAModelChoice choice)
{
    choice.random.tau2Interval = MAConst::TAU2_INTERVAL_NONE;
    return choice;
}

MAModelChoice ModelOfStep(MAModelChoice choice)
{
    choice.random.checksTau2 = false;
    return WithoutTau2Interval(choice);
}

} // namespace MA_NAMESPACE
