#include "meta_analysis/pooling/MAPooling.h"

#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/inference/MAKnappHartung.h"
#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/pooling/MAHomogeneity.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/pooling/MATau2Inference.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

namespace {

MAPooledModel Failed(const KXStatus& status)
{
    MAPooledModel model;
    model.status = status;
    return model;
}

bool IsAdjusted(MAConst::KNAPPHADJTYPE adjustment, double residualDf, double tau2)
{
    return adjustment == MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS ? IsHeterogeneous(residualDf, tau2)
                                                                 : adjustment != MAConst::KNAPP_HARTUNG_NONE;
}

/// `residualSum()` is called only where the factor is made of it.
template <class ResidualSumOfMeans>
MAMeanTest MeanTest(double residualDf, MAConst::KNAPPHADJTYPE adjustment, double tau2,
                    ResidualSumOfMeans residualSum)
{
    MAMeanTest test = {residualDf, IsAdjusted(adjustment, residualDf, tau2)};
    if (test.isAdjusted && residualDf > 0.0)
        test.factor =
            KnappHartungFactor(residualSum(), residualDf, adjustment == MAConst::KNAPP_HARTUNG_TRUNCATED);
    return test;
}

/// How a mean is tested, and what of the test is wanted.
struct Inference
{
    const MAMeanTest& test;
    const MAWantedResults& wanted;
    MAQuantiles& quantiles;
};

/// Student's t has k - 1 degrees of freedom under the adjustment of Knapp and Hartung: a single study has no
/// test and no interval.
MAEstimate InferMean(double mean, double variance, double nullValue, const Inference& inference)
{
    const auto& [test, wanted, quantiles] = inference;
    MAEstimate effect = EstimateWithStatistic(mean, variance, nullValue);
    if (test.isAdjusted && !(test.residualDf > 0.0))
        return effect;
    if (wanted.pValue)
        effect.pValue = test.isAdjusted ? TwoSidedTPValue(effect.statistic, test.residualDf)
                                        : TwoSidedNormalPValue(effect.statistic);
    if (wanted.interval)
        SetInterval(effect, test.isAdjusted ? quantiles.T(test.residualDf) : quantiles.Normal());
    return effect;
}

/// Effects that are all 0 have no variance under the adjustment, and no test: it would be of 0 / 0.
void SetEffect(double mean, double weightSum, const Inference& inference, MAPooledModel& model)
{
    const MAMeanTest& test = inference.test;
    model.effect =
        InferMean(mean, test.isAdjusted ? test.factor / weightSum : 1.0 / weightSum, 0.0, inference);
    if (test.isAdjusted)
        model.testDf = test.residualDf;
    if (model.effect.stdError == 0.0 && model.effect.estimate == 0.0) {
        model.effect.statistic = KXMV::Missing();
        model.effect.pValue = MAPValue();
    }
}

/// Infinite for the normal distribution, which Student's t then is; 0 or less where nothing can be predicted.
/// `residualDf` is k - 1 for the mean of k studies.
double PredictionDf(MAConst::PREDICTIONTYPE type, double residualDf)
{
    switch (type) {
    case MAConst::PREDICTION_T_K_MINUS_2:
        return residualDf - 1.0;
    case MAConst::PREDICTION_T_K_MINUS_1:
        return residualDf;
    case MAConst::PREDICTION_NORMAL:
        return residualDf < 1.0 ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return residualDf - 1.0; // a value outside the enumeration
}

/// Under the adjustment of Knapp and Hartung nothing is predicted without degrees of freedom; otherwise the
/// bounds are NaN then.
MAPrediction PredictEffect(const MAEstimate& effect, double tau2, const MARandomEffectsChoice& choice,
                           const Inference& inference)
{
    MAPrediction predicted;
    const MAMeanTest& test = inference.test;
    const double df = PredictionDf(choice.prediction, test.residualDf);
    if (test.isAdjusted && (test.residualDf < 1.0 || !(df > 0.0)))
        return predicted;
    const double stdDev = std::sqrt(effect.variance + tau2);
    const double halfWidth = stdDev * inference.quantiles.T(df);
    predicted.lower = effect.estimate - halfWidth;
    predicted.upper = effect.estimate + halfWidth;
    if (KXMV::IsMissing(choice.threshold) || !(df > 0.0))
        return predicted;
    const double distance = (effect.estimate - choice.threshold) / stdDev;
    if (!std::isnan(distance)) // it is for a distribution of one value, which is the threshold
        predicted.probability = KXDistFun::CdfT(choice.isThresholdAbove ? distance : -distance, df);
    return predicted;
}

/// The model of the mean alone.
MAPooledModel ModelOfMean(double mean, double weightSum, double tau2, const MARandomEffectsChoice& choice,
                          const Inference& inference)
{
    MAPooledModel model;
    model.tau2 = tau2;
    SetEffect(mean, weightSum, inference, model);
    if (inference.wanted.prediction)
        model.prediction = PredictEffect(model.effect, tau2, choice, inference);
    return model;
}

/// H² and I² from the typical within-study variance s² = (k - 1) / (sum(w) - sum(w²) / sum(w)), w = 1 / v, of
/// Higgins and Thompson (2002), Statistics in Medicine 21, 1539-1558.
void SetHeterogeneity(double fixedTrace, std::size_t studyCount, MAPooledModel& model)
{
    model.typicalVariance = static_cast<double>(static_cast<int>(studyCount) - 1) / fixedTrace;
    model.heterogeneity = HeterogeneityFromTau2(model.tau2, model.typicalVariance);
}

/// The results that go by the weights 1 / v.
void SetFixedEffectResults(const MAEffects& studies, const MAWantedResults& wanted, MAPooledModel& model)
{
    model.homogeneity.df = static_cast<int>(studies.Count()) - 1;
    if (!wanted.homogeneity && !wanted.heterogeneity)
        return;
    const MAWeightedMean fixed = WeightedMean(studies, 0.0);
    if (wanted.homogeneity)
        model.homogeneity = TestHomogeneity(ResidualSum(studies, fixed.Mean(), 0.0), studies.Count(),
                                            wanted.homogeneityPValue);
    if (wanted.heterogeneity)
        SetHeterogeneity(PairSum(studies, fixed.weightSum), studies.Count(), model);
}

double TypicalVariance(const MAEffects& studies)
{
    return (static_cast<double>(studies.Count()) - 1.0) /
           PairSum(studies, WeightedMean(studies, 0.0).weightSum);
}

bool IsTau2Doubtful(const MAEffects& studies, MAPooledCurve& curve, MAConst::TAU2ESTIMATOR estimator,
                    const MAPooledModel& model)
{
    return IsTau2Doubtful(curve, estimator, model.tau2, model.tau2Results.convergence,
                          [&] { return TypicalVariance(studies); });
}

/// The likelihood at tau², the interval that goes by it or by Q, and the check of tau².
void SetTau2Results(const MAEffects& studies, const MARandomEffectsChoice& choice,
                    const MAWantedResults& wanted, MAQuantiles& quantiles, MACurveOnDemand& curve,
                    MAPooledModel& model)
{
    const MAConst::TAU2INTERVAL interval =
        wanted.tau2Interval ? choice.tau2Interval : MAConst::TAU2_INTERVAL_NONE;
    const bool hasLikelihood = wanted.likelihood && HasLikelihood(choice.estimator);
    if (hasLikelihood || interval != MAConst::TAU2_INTERVAL_NONE)
        InferTau2(curve.Get(), model.tau2, {choice.estimator, interval, 1, hasLikelihood}, quantiles,
                  model.tau2Results);
    if (wanted.heterogeneityBounds)
        BoundHeterogeneity(model);
    if (choice.checksTau2 && IsIterative(choice.estimator))
        model.tau2Results.isDoubtful = IsTau2Doubtful(studies, curve.Get(), choice.estimator, model);
}

} // namespace

MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice)
{
    MAQuantiles quantiles(choice.alpha);
    return PoolFixedEffect(studies, choice, MAWantedResults(), quantiles);
}

MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice,
                              const MAWantedResults& wanted, MAQuantiles& quantiles)
{
    if (!studies.HaveEqualLengths())
        return Failed(KXStatus(MAStatusCode::LENGTH_MISMATCH));
    const MAWeightedMean fixed = WeightedMean(studies, 0.0);
    MAFixedEffectSums sums{studies.Count(), fixed.Mean(), fixed.weightSum, 0.0};
    if (wanted.homogeneity || wanted.heterogeneity)
        sums.q = CochranQ(studies, sums.mean);
    return FixedEffectModel(sums, choice, wanted, quantiles);
}

MAPooledModel FixedEffectModel(const MAFixedEffectSums& sums, const MAFixedEffectChoice& choice,
                               const MAWantedResults& wanted, MAQuantiles& quantiles)
{
    MAPooledModel model;
    const auto [k, mean, weightSum, q] = sums;
    model.effect = InferMean(mean, 1.0 / weightSum, choice.nullHypothesis, {{}, wanted, quantiles});
    if (k < 2)
        return model;
    model.homogeneity.df = static_cast<int>(k) - 1;
    if (wanted.homogeneity)
        model.homogeneity = TestHomogeneity(q, k, wanted.homogeneityPValue);
    if (wanted.heterogeneity)
        model.heterogeneity = wanted.heterogeneityBounds
                                  ? MeasureHeterogeneity(q, k, quantiles.Normal())
                                  : HeterogeneityFromQ(q, static_cast<double>(k) - 1.0);
    return model;
}

MAMeanTest TestOfMeans(std::span<const MAEffects> groups, MAConst::KNAPPHADJTYPE adjustment, double tau2)
{
    double residualDf = 0.0;
    for (const MAEffects& group : groups)
        residualDf += static_cast<double>(group.Count()) - 1.0;
    return MeanTest(residualDf, adjustment, tau2, [&] {
        double residualSum = 0.0;
        for (const MAEffects& group : groups)
            residualSum += ResidualSum(group, WeightedMean(group, tau2).Mean(), tau2);
        return residualSum;
    });
}

MAPooledModel PoolAtTau2(const MAEffects& studies, const MARandomEffectsChoice& choice, double tau2,
                         const MAMeanTest& test)
{
    MAQuantiles quantiles(choice.alpha);
    const MAWantedResults wanted;
    const MAWeightedMean sums = WeightedMean(studies, tau2);
    MAPooledModel model = ModelOfMean(sums.Mean(), sums.weightSum, tau2, choice, {test, wanted, quantiles});
    if (studies.Count() >= 2)
        SetFixedEffectResults(studies, wanted, model);
    return model;
}

MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice)
{
    MAQuantiles quantiles(choice.alpha);
    return PoolRandomEffects(studies, choice, MAWantedResults(), quantiles);
}

MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice,
                                const MAWantedResults& wanted, MAQuantiles& quantiles)
{
    MACurveOnDemand curve(studies, choice.estimator);
    const MATau2Estimate estimated =
        EstimateTau2(studies, {choice.estimator, choice.limits, choice.search}, curve);
    if (estimated.status.IsError()) {
        MAPooledModel failed = Failed(estimated.status);
        failed.tau2 = estimated.tau2;
        return failed;
    }
    const double tau2 = estimated.tau2;
    const MAWeightedMean sums = WeightedMean(studies, tau2);
    const double mean = sums.Mean();
    const MAMeanTest test = MeanTest(static_cast<double>(studies.Count()) - 1.0, choice.knappHartung, tau2,
                                     [&] { return ResidualSum(studies, mean, tau2); });
    MAPooledModel model = ModelOfMean(mean, sums.weightSum, tau2, choice, {test, wanted, quantiles});
    model.status = estimated.status;
    model.tau2Results.convergence = estimated.convergence;
    model.tau2Results.evaluations = estimated.evaluations;
    if (studies.Count() >= 2) {
        SetFixedEffectResults(studies, wanted, model);
        SetTau2Results(studies, choice, wanted, quantiles, curve, model);
    }
    return model;
}

MAPooledModel RandomEffectsModel(const MARandomEffectsSums& sums, const MARandomEffectsChoice& choice)
{
    MAQuantiles quantiles(choice.alpha);
    MAWantedResults wanted;
    wanted.prediction = false;
    return RandomEffectsModel(sums, choice, wanted, quantiles);
}

MAPooledModel RandomEffectsModel(const MARandomEffectsSums& sums, const MARandomEffectsChoice& choice,
                                 const MAWantedResults& wanted, MAQuantiles& quantiles)
{
    const double tau2 = sums.tau2.tau2;
    const MAMeanTest test = MeanTest(static_cast<double>(sums.count) - 1.0, choice.knappHartung, tau2,
                                     [&] { return sums.residualSum; });
    MAPooledModel model = ModelOfMean(sums.mean, sums.weightSum, tau2, choice, {test, wanted, quantiles});
    model.tau2Results.convergence = sums.tau2.convergence;
    model.tau2Results.evaluations = sums.tau2.evaluations;
    model.homogeneity.df = static_cast<int>(sums.count) - 1;
    if (wanted.homogeneity)
        model.homogeneity = TestHomogeneity(sums.q, sums.count, wanted.homogeneityPValue);
    if (wanted.heterogeneity)
        SetHeterogeneity(sums.fixedTrace, sums.count, model);
    return model;
}

void BoundHeterogeneity(MAPooledModel& model)
{
    if (KXMV::IsMissing(model.tau2Results.lower) || KXMV::IsMissing(model.tau2Results.upper) ||
        KXMV::IsMissing(model.typicalVariance))
        return;
    const MAHeterogeneityMeasures lower =
        HeterogeneityFromTau2(model.tau2Results.lower, model.typicalVariance);
    const MAHeterogeneityMeasures upper =
        HeterogeneityFromTau2(model.tau2Results.upper, model.typicalVariance);
    model.heterogeneity.h2Lower = lower.h2;
    model.heterogeneity.h2Upper = upper.h2;
    model.heterogeneity.i2Lower = lower.i2;
    model.heterogeneity.i2Upper = upper.i2;
}

bool IsTau2Doubtful(const MAEffects& studies, const MARandomEffectsChoice& choice, const MAPooledModel& model)
{
    if (studies.Count() < 2 || model.status.IsError())
        return false;
    MAPooledCurve curve = CurveOf(studies, choice.estimator);
    return IsTau2Doubtful(studies, curve, choice.estimator, model);
}

} // namespace MA_NAMESPACE
