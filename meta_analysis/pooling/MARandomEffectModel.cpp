#include "meta_analysis/pooling/MARandomEffectModel.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MAKnappHartung.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"
#include "meta_analysis/pooling/MATau2Interval.h"
#include "meta_analysis/pooling/MATau2Search.h"

#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

MARandomEffectModel::MARandomEffectModel() = default;
MARandomEffectModel::MARandomEffectModel(const MARandomEffectModel&) = default;
MARandomEffectModel& MARandomEffectModel::operator=(const MARandomEffectModel&) = default;
MARandomEffectModel::~MARandomEffectModel() = default;

KXStatus MARandomEffectModel::SetEffectSizes(const std::vector<double>* effectSizes)
{
    return StoreStudyVector(effectSizes, effectSizes_, studyCount_, status_);
}

KXStatus MARandomEffectModel::SetVariances(const std::vector<double>* variances)
{
    return StoreStudyVector(variances, variances_, studyCount_, status_);
}

KXStatus MARandomEffectModel::SetKHAdjType(MAConst::KNAPPHADJTYPE type)
{
    return StoreSetting(type, knappHartung_, status_);
}

KXStatus MARandomEffectModel::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, alpha_, status_);
}

KXStatus MARandomEffectModel::SetMaxIter(int maxIter)
{
    return StoreSetting(maxIter, maxIter_, status_);
}

KXStatus MARandomEffectModel::SetMaxStepHalving(int maxStepHalving)
{
    return StoreSetting(maxStepHalving, maxStepHalving_, status_);
}

KXStatus MARandomEffectModel::SetConverTol(double tolerance)
{
    return StoreSetting(tolerance, tolerance_, status_);
}

KXStatus MARandomEffectModel::SetEstimationType(MAConst::TAU2ESTIMATOR type)
{
    return StoreSetting(type, estimator_, status_);
}

KXStatus MARandomEffectModel::SetTau2Search(MAConst::TAU2SEARCH search)
{
    return StoreSetting(search, search_, status_);
}

KXStatus MARandomEffectModel::SetTau2Interval(MAConst::TAU2INTERVAL type)
{
    return StoreSetting(type, tau2Interval_, status_);
}

KXStatus MARandomEffectModel::SetPrediction(MAConst::PREDICTIONTYPE type)
{
    return StoreSetting(type, prediction_, status_);
}

KXStatus MARandomEffectModel::SetProbabilityAbove(double threshold)
{
    StoreSetting(true, isThresholdAbove_, status_);
    return StoreSetting(threshold, threshold_, status_);
}

KXStatus MARandomEffectModel::SetProbabilityBelow(double threshold)
{
    StoreSetting(false, isThresholdAbove_, status_);
    return StoreSetting(threshold, threshold_, status_);
}

KXStatus MARandomEffectModel::EstimateMeanESStats()
{
    if (status_.IsError())
        return status_;
    if (EstimateTau2().IsError())
        return status_;
    PoolEffectSizes();
    TestMean();
    if (knappHartung_ == MAConst::KNAPP_HARTUNG_NONE || (studyCount_ >= 2 && PredictionDf() > 0.0))
        PredictEffect();
    if (studyCount_ >= 2) {
        TestHomogeneity();
        MeasureLikelihood();
    }
    return status_;
}

KXStatus MARandomEffectModel::EstimateTau2()
{
    MATAU2ESTIMATIOR estimator;
    estimator.SetEffectSizes(effectSizes_);
    estimator.SetVariances(variances_);
    estimator.SetMaxIter(maxIter_);
    estimator.SetMaxStepHalving(maxStepHalving_);
    estimator.SetConverTol(tolerance_);
    estimator.SetTau2Search(search_);
    status_ = estimator.ComputeTau2Variance(estimator_);
    if (status_.IsError())
        return status_;
    // The caller may have changed both vectors since they were set, to the same other length.
    if (!HaveLength(studyCount_, effectSizes_, variances_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    tau2_ = estimator.GetBetweenStudyVariannce();
    tau2Results_.convergence = estimator.GetTau2Convergence();
    tau2Results_.evaluations = estimator.GetTau2Evaluations();
    if (tau2_ == -1.0)
        status_ = KXStatus(MAStatusCode::TAU2_FAILED);
    return status_;
}

void MARandomEffectModel::PoolEffectSizes()
{
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double weight = 1.0 / (tau2_ + (*variances_)[i]);
        weightSum += weight;
        weightedSum += weight * (*effectSizes_)[i];
    }
    mean_ = weightedSum / weightSum;
    variance_ = 1.0 / weightSum;
    if (knappHartung_ != MAConst::KNAPP_HARTUNG_NONE)
        variance_ = VarianceFactor() / weightSum;
}

/// A single study has no residual, and keeps its variance.
double MARandomEffectModel::VarianceFactor() const
{
    if (studyCount_ < 2)
        return 1.0;
    double residualSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double residual = (*effectSizes_)[i] - mean_;
        residualSum += residual * residual / (tau2_ + (*variances_)[i]);
    }
    return KnappHartungFactor(residualSum, static_cast<double>(studyCount_) - 1.0,
                              knappHartung_ == MAConst::KNAPP_HARTUNG_TRUNCATED);
}

void MARandomEffectModel::TestMean()
{
    const double stdError = std::sqrt(variance_);
    statistic_ = mean_ / stdError;
    double quantile = 0.0;
    if (knappHartung_ == MAConst::KNAPP_HARTUNG_NONE) {
        quantile = TwoSidedNormalQuantile(alpha_);
        pValue_ = TwoSidedNormalPValue(statistic_);
    } else if (studyCount_ >= 2) {
        const double df = static_cast<double>(studyCount_) - 1.0;
        quantile = TwoSidedTQuantile(alpha_, df);
        pValue_ = TwoSidedTPValue(statistic_, df);
    } else {
        return;
    }
    if (stdError == 0.0 && mean_ == 0.0) { // all effects are 0, under Knapp and Hartung: there is no test
        statistic_ = KXMV::Missing();
        pValue_ = MAPValue();
    }
    ciUpper_ = mean_ + stdError * quantile;
    ciLower_ = mean_ - stdError * quantile;
}

/// Infinite for the normal distribution, which Student's t then is; 0 or less where nothing can be predicted.
double MARandomEffectModel::PredictionDf() const
{
    const auto k = static_cast<double>(studyCount_);
    switch (prediction_) {
    case MAConst::PREDICTION_T_K_MINUS_2:
        return k - 2.0;
    case MAConst::PREDICTION_T_K_MINUS_1:
        return k - 1.0;
    case MAConst::PREDICTION_NORMAL:
        return studyCount_ < 2 ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return k - 2.0; // a value outside the enumeration
}

void MARandomEffectModel::PredictEffect()
{
    const double df = PredictionDf();
    const double quantile = TwoSidedTQuantile(alpha_, df);
    const double stdDev = std::sqrt(variance_ + tau2_);
    piLower_ = mean_ - stdDev * quantile;
    piUpper_ = mean_ + stdDev * quantile;
    if (KXMV::IsMissing(threshold_) || !(df > 0.0))
        return;
    const double distance = (mean_ - threshold_) / stdDev;
    if (std::isnan(distance)) // a distribution of one value, which is the threshold
        return;
    probability_ = KXDistFun::CdfT(isThresholdAbove_ ? distance : -distance, df);
}

/// Q is the weighted residual sum about the fixed-effect mean, which is never negative. The typical
/// within-study variance s² = (k - 1) / (sum(w) - sum(w²) / sum(w)) of Higgins and Thompson (2002) has its
/// denominator as twice the sum of the products of all pairs of weights over their sum: no cancellation
/// when one weight dominates. As products with shares of the sum they neither overflow nor vanish.
void MARandomEffectModel::TestHomogeneity()
{
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double weight = 1.0 / (*variances_)[i];
        weightSum += weight;
        weightedSum += weight * (*effectSizes_)[i];
    }
    const double fixedMean = weightedSum / weightSum;
    const double inverseSum = 1.0 / weightSum;
    double q = 0.0;
    double share = 0.0; // of the weights so far
    double pairSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double residual = (*effectSizes_)[i] - fixedMean;
        const double weight = 1.0 / (*variances_)[i];
        q += residual * residual / (*variances_)[i];
        pairSum += weight * share;
        share += weight * inverseSum;
    }
    q_ = q;
    df_ = static_cast<int>(studyCount_) - 1;
    qPValue_ = HomogeneityPValue(q_, df_);

    typicalVariance_ = df_ / (2.0 * pairSum);
    heterogeneity_ = HeterogeneityFromTau2(tau2_, typicalVariance_);
}

/// The likelihood at tau², and the interval that goes by it or by Q.
void MARandomEffectModel::MeasureLikelihood()
{
    if (!HasLikelihood(estimator_) && tau2Interval_ == MAConst::TAU2_INTERVAL_NONE)
        return;
    MAPooledCurve curve(effectSizes_->data(), variances_->data(), studyCount_, LikelihoodOf(estimator_));
    const double t = tau2_ / curve.Unit();
    if (HasLikelihood(estimator_))
        tau2Results_.information = InformationCriteria(curve.LogLikelihood(t), 2.0, curve.Bounds().traceSize);
    SetTau2Bounds(Tau2Interval(curve, tau2Interval_, estimator_, t, alpha_));
}

/// The bounds of H² and I² are their values at those of tau².
void MARandomEffectModel::SetTau2Bounds(const MATau2Bounds& bounds)
{
    tau2Results_.lower = bounds.lower;
    tau2Results_.upper = bounds.upper;
    if (KXMV::IsMissing(bounds.lower) || KXMV::IsMissing(bounds.upper))
        return;
    const MAHeterogeneityMeasures lower = HeterogeneityFromTau2(bounds.lower, typicalVariance_);
    const MAHeterogeneityMeasures upper = HeterogeneityFromTau2(bounds.upper, typicalVariance_);
    heterogeneity_.h2Lower = lower.h2;
    heterogeneity_.h2Upper = upper.h2;
    heterogeneity_.i2Lower = lower.i2;
    heterogeneity_.i2Upper = upper.i2;
}

bool MARandomEffectModel::HasDoubtfulTau2() const
{
    if (!IsIterative(estimator_) || tau2Results_.convergence == MAConst::TAU2_GLOBAL_OPTIMUM ||
        studyCount_ < 2 || status_.IsError())
        return false;
    MAPooledCurve curve(effectSizes_->data(), variances_->data(), studyCount_, LikelihoodOf(estimator_));
    const double proved =
        curve.Unit() * SolveTau2(curve, estimator_, tau2_ / curve.Unit(), comparingPrecision).t;
    return IsTau2Off(tau2_, proved, typicalVariance_);
}

} // namespace MA_NAMESPACE
