#include "meta_analysis/pooling/MAContinousFixEffectModel.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MANormalTest.h"
#include "meta_analysis/settings/Guarded.h"

#include <cmath>

namespace MA_NAMESPACE {

MAContinousFixEffectModel::MAContinousFixEffectModel() = default;
MAContinousFixEffectModel::MAContinousFixEffectModel(const MAContinousFixEffectModel&) = default;
MAContinousFixEffectModel& MAContinousFixEffectModel::operator=(const MAContinousFixEffectModel&) = default;
MAContinousFixEffectModel::~MAContinousFixEffectModel() = default;

KXStatus MAContinousFixEffectModel::SetEffectSizes(const std::vector<double>* effectSizes)
{
    return StoreStudyVector(effectSizes, effectSizes_, studyCount_, status_);
}

KXStatus MAContinousFixEffectModel::SetVariances(const std::vector<double>* variances)
{
    return StoreStudyVector(variances, variances_, studyCount_, status_);
}

KXStatus MAContinousFixEffectModel::SetContrastCoef(const std::vector<double>* coefficients)
{
    return StoreStudyVector(coefficients, contrastCoefficients_, studyCount_, status_);
}

KXStatus MAContinousFixEffectModel::SetNullHypothesis(double value)
{
    return StoreSetting(value, nullHypothesis_, status_);
}

KXStatus MAContinousFixEffectModel::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, alpha_, status_);
}

KXStatus MAContinousFixEffectModel::EstimateMeanESStats()
{
    if (status_.IsError())
        return status_;
    if (!HaveLength(studyCount_, effectSizes_, variances_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] {
        const double quantile = TwoSidedNormalQuantile(alpha_);
        PoolEffectSizes();
        TestMean(quantile);
        if (studyCount_ >= 2)
            TestHomogeneity(quantile);
        return status_;
    });
}

void MAContinousFixEffectModel::PoolEffectSizes()
{
    weights_.resize(studyCount_);
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        weights_[i] = 1.0 / (*variances_)[i];
        weightSum += weights_[i];
        weightedSum += weights_[i] * (*effectSizes_)[i];
    }
    variance_ = 1.0 / weightSum;
    mean_ = weightedSum / weightSum;
}

void MAContinousFixEffectModel::TestMean(double quantile)
{
    const MANormalInference inference = InferNormal(mean_, variance_, nullHypothesis_, quantile);
    stdError_ = inference.stdError;
    zValue_ = inference.zValue;
    pValue_ = inference.pValue;
    ciUpper_ = inference.ciUpper;
    ciLower_ = inference.ciLower;
}

void MAContinousFixEffectModel::TestHomogeneity(double quantile)
{
    double q = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double residual = (*effectSizes_)[i] - mean_;
        q += residual * residual * weights_[i];
    }
    q_ = q;
    df_ = static_cast<int>(studyCount_) - 1;
    qPValue_ = HomogeneityPValue(q_, df_);
    heterogeneity_ = MeasureHeterogeneity(q_, studyCount_, quantile);
}

KXStatus MAContinousFixEffectModel::ContrastTest()
{
    if (contrastCoefficients_ == nullptr)
        return KXStatus();
    if (!HaveLength(studyCount_, effectSizes_, variances_, contrastCoefficients_))
        return KXStatus(MAStatusCode::LENGTH_MISMATCH);

    KXStatus result;
    contrast_ = 0.0;
    contrastVariance_ = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double coefficient = (*contrastCoefficients_)[i];
        if (KXMV::IsMissing(coefficient)) {
            result = KXStatus(MAStatusCode::CONTRAST_COEFFICIENT_MISSING, true);
            continue;
        }
        contrast_ += (*effectSizes_)[i] * coefficient;
        contrastVariance_ += coefficient * coefficient * (*variances_)[i];
    }
    contrastStdError_ = std::sqrt(contrastVariance_);
    if (contrastVariance_ > 0.0) {
        contrastZValue_ = contrast_ / contrastStdError_;
        contrastPValue_ = TwoSidedNormalPValue(contrastZValue_);
    }
    const double halfWidth = TwoSidedNormalQuantile(alpha_) * contrastStdError_;
    contrastCIUpper_ = contrast_ + halfWidth;
    contrastCILower_ = contrast_ - halfWidth;
    return result;
}

} // namespace MA_NAMESPACE
