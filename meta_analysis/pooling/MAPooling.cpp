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

/// Student's t has k - 1 degrees of freedom under the adjustment of Knapp and Hartung: a single study has no
/// test and no interval.
MAEstimate InferMean(double mean, double weightSum, const MAMeanTest& test, double alpha)
{
    return test.isAdjusted ? InferT(mean, test.factor / weightSum, test.residualDf, alpha)
                           : InferNormal(mean, 1.0 / weightSum, 0.0, TwoSidedNormalQuantile(alpha));
}

/// Effects that are all 0 have no variance under the adjustment, and no test: it would be of 0 / 0.
void SetEffect(double mean, double weightSum, const MAMeanTest& test, double alpha, MAPooledModel& model)
{
    model.effect = InferMean(mean, weightSum, test, alpha);
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
                           const MAMeanTest& test)
{
    MAPrediction predicted;
    const double df = PredictionDf(choice.prediction, test.residualDf);
    if (test.isAdjusted && (test.residualDf < 1.0 || !(df > 0.0)))
        return predicted;
    const double stdDev = std::sqrt(effect.variance + tau2);
    const double halfWidth = stdDev * TwoSidedTQuantile(choice.alpha, df);
    predicted.lower = effect.estimate - halfWidth;
    predicted.upper = effect.estimate + halfWidth;
    if (KXMV::IsMissing(choice.threshold) || !(df > 0.0))
        return predicted;
    const double distance = (effect.estimate - choice.threshold) / stdDev;
    if (!std::isnan(distance)) // it is for a distribution of one value, which is the threshold
        predicted.probability = KXDistFun::CdfT(choice.isThresholdAbove ? distance : -distance, df);
    return predicted;
}

/// Cochran's test, and H² and I² from the typical within-study variance s² = (k - 1) / (sum(w) - sum(w²) /
/// sum(w)), w = 1 / v, of Higgins and Thompson (2002), Statistics in Medicine 21, 1539-1558.
void SetHeterogeneity(const MAEffects& studies, MAPooledModel& model)
{
    const MAWeightedMean fixed = WeightedMean(studies, 0.0);
    model.homogeneity = TestHomogeneity(ResidualSum(studies, fixed.Mean(), 0.0), studies.Count());
    model.typicalVariance = model.homogeneity.df / PairSum(studies, fixed.weightSum);
    model.heterogeneity = HeterogeneityFromTau2(model.tau2, model.typicalVariance);
}

bool IsTau2Doubtful(MAPooledCurve& curve, MAConst::TAU2ESTIMATOR estimator, const MAPooledModel& model)
{
    return IsTau2Doubtful(curve, estimator, model.tau2, model.tau2Results.convergence,
                          [&] { return model.typicalVariance; });
}

/// The likelihood at tau², the interval that goes by it or by Q, and the check of tau²: all of one curve,
/// which is not made where nothing is asked of it.
void SetTau2Results(const MAEffects& studies, const MARandomEffectsChoice& choice, MAPooledModel& model)
{
    const bool checks = choice.checksTau2 && IsIterative(choice.estimator);
    if (!HasLikelihood(choice.estimator) && !checks && choice.tau2Interval == MAConst::TAU2_INTERVAL_NONE)
        return;
    MAPooledCurve curve = CurveOf(studies, choice.estimator);
    InferTau2(curve, model.tau2, {choice.estimator, choice.tau2Interval, choice.alpha, 1}, model.tau2Results);
    BoundHeterogeneity(model);
    model.tau2Results.isDoubtful = checks && IsTau2Doubtful(curve, choice.estimator, model);
}

} // namespace

MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice)
{
    if (!studies.HaveEqualLengths())
        return Failed(KXStatus(MAStatusCode::LENGTH_MISMATCH));
    MAPooledModel model;
    const double quantile = TwoSidedNormalQuantile(choice.alpha);
    const MAWeightedMean sums = WeightedMean(studies, 0.0);
    model.effect = InferNormal(sums.Mean(), sums.Variance(), choice.nullHypothesis, quantile);
    if (studies.Count() >= 2) {
        model.homogeneity = TestHomogeneity(CochranQ(studies, model.effect.estimate), studies.Count());
        model.heterogeneity = MeasureHeterogeneity(model.homogeneity.q, studies.Count(), quantile);
    }
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
    MAPooledModel model;
    model.tau2 = tau2;
    const MAWeightedMean sums = WeightedMean(studies, tau2);
    SetEffect(sums.Mean(), sums.weightSum, test, choice.alpha, model);
    model.prediction = PredictEffect(model.effect, tau2, choice, test);
    if (studies.Count() >= 2)
        SetHeterogeneity(studies, model);
    return model;
}

MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice)
{
    const MATau2Estimate estimated = EstimateTau2(studies, {choice.estimator, choice.limits, choice.search});
    if (estimated.status.IsError()) {
        MAPooledModel failed = Failed(estimated.status);
        failed.tau2 = estimated.tau2;
        return failed;
    }
    MAPooledModel model = PoolAtTau2(studies, choice, estimated.tau2,
                                     TestOfMeans({&studies, 1}, choice.knappHartung, estimated.tau2));
    model.status = estimated.status;
    model.tau2Results.convergence = estimated.convergence;
    model.tau2Results.evaluations = estimated.evaluations;
    if (studies.Count() >= 2)
        SetTau2Results(studies, choice, model);
    return model;
}

MAPooledModel RandomEffectsModel(const MARandomEffectsSums& sums, const MARandomEffectsChoice& choice)
{
    MAPooledModel model;
    model.tau2 = sums.tau2.tau2;
    model.tau2Results.convergence = sums.tau2.convergence;
    model.tau2Results.evaluations = sums.tau2.evaluations;
    const MAMeanTest test = MeanTest(static_cast<double>(sums.count) - 1.0, choice.knappHartung, model.tau2,
                                     [&] { return sums.residualSum; });
    SetEffect(sums.mean, sums.weightSum, test, choice.alpha, model);
    model.homogeneity = TestHomogeneity(sums.q, sums.count);
    model.typicalVariance = model.homogeneity.df / sums.fixedTrace;
    model.heterogeneity = HeterogeneityFromTau2(model.tau2, model.typicalVariance);
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
    return IsTau2Doubtful(curve, choice.estimator, model);
}

} // namespace MA_NAMESPACE
