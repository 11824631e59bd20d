#include "meta_analysis/pooling/MABinaryFixEffectModel.h"

#include "meta_analysis/effectsize/MABinaryEffectSize.h"
#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MANormalTest.h"
#include "meta_analysis/pooling/MABinaryPooling.h"
#include "meta_analysis/pooling/MAPooledCounts.h"
#include "meta_analysis/settings/Guarded.h"

#include <cmath>

namespace MA_NAMESPACE {

MABinaryFixEffectModel::MABinaryFixEffectModel() = default;
MABinaryFixEffectModel::MABinaryFixEffectModel(const MABinaryFixEffectModel&) = default;
MABinaryFixEffectModel& MABinaryFixEffectModel::operator=(const MABinaryFixEffectModel&) = default;
MABinaryFixEffectModel::~MABinaryFixEffectModel() = default;

KXStatus MABinaryFixEffectModel::SetTreatmentGSuccessCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, treatmentSuccesses_, studyCount_, status_);
}

KXStatus MABinaryFixEffectModel::SetControlGSuccessCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, controlSuccesses_, studyCount_, status_);
}

KXStatus MABinaryFixEffectModel::SetTreatmentGFailureCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, treatmentFailures_, studyCount_, status_);
}

KXStatus MABinaryFixEffectModel::SetControlGFailureCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, controlFailures_, studyCount_, status_);
}

KXStatus MABinaryFixEffectModel::SetContrastCoef(const std::vector<double>* coefficients)
{
    return StoreStudyVector(coefficients, contrastCoefficients_, studyCount_, status_);
}

KXStatus MABinaryFixEffectModel::SetZeroCountDelta(double delta)
{
    return StoreSetting(delta, zeroCountDelta_, status_);
}

KXStatus MABinaryFixEffectModel::SetNullHypothesis(double value)
{
    return StoreSetting(value, nullHypothesis_, status_);
}

KXStatus MABinaryFixEffectModel::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, alpha_, status_);
}

KXStatus MABinaryFixEffectModel::SetZeroAdjType(MAConst::ZEROADJTYPE type)
{
    return StoreSetting(type, zeroAdjustment_, status_);
}

KXStatus MABinaryFixEffectModel::SetPooledZeroCells(MAConst::POOLEDZEROCELLS rule)
{
    return StoreSetting(rule, pooledZeroCells_, status_);
}

KXStatus MABinaryFixEffectModel::SetEstimationMethod(MAConst::BINESTYPE method)
{
    const KXStatus stored = StoreSetting(method, method_, status_);
    return stored.IsError() ? stored : KXStatus();
}

bool MABinaryFixEffectModel::HasCounts() const
{
    return HaveLength(studyCount_, treatmentSuccesses_, treatmentFailures_, controlSuccesses_,
                      controlFailures_);
}

MATable MABinaryFixEffectModel::TableOf(std::size_t study) const
{
    return {(*treatmentSuccesses_)[study], (*treatmentFailures_)[study], (*controlSuccesses_)[study],
            (*controlFailures_)[study]};
}

std::vector<MATable> MABinaryFixEffectModel::Tables() const
{
    std::vector<MATable> tables;
    tables.reserve(studyCount_);
    for (std::size_t i = 0; i < studyCount_; ++i)
        tables.push_back(TableOf(i));
    return tables;
}

KXStatus MABinaryFixEffectModel::ComputeEffectSizeStatistics()
{
    if (status_.IsError())
        return status_;
    if (!HasCounts())
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] { return ComputeStatistics(); });
}

KXStatus MABinaryFixEffectModel::ComputeStatistics()
{
    const std::vector<MATable> asRead = Tables();
    if (ComputeStudyEffects().IsError())
        return status_;
    weights_.resize(studyCount_, KXMV::Missing());
    contrastEffects_.clear();
    WithBinaryPooling(method_, [&](auto pooling) {
        EstimateBy(MAPooledCounts<decltype(pooling)>(pooledZeroCells_), asRead);
    });
    return status_;
}

KXStatus MABinaryFixEffectModel::ComputeStudyEffects()
{
    MABinaryEffectSize effectSizes;
    effectSizes.SetTreatmentGSuccessCounts(treatmentSuccesses_);
    effectSizes.SetTreatmentGFailureCounts(treatmentFailures_);
    effectSizes.SetControlGSuccessCounts(controlSuccesses_);
    effectSizes.SetControlGFailureCounts(controlFailures_);
    effectSizes.SetEstimationMethod(method_);
    effectSizes.SetZeroAdjType(zeroAdjustment_);
    effectSizes.SetZeroCountDelta(correctionDelta_);
    status_ = effectSizes.ComputeEffectSizeStatistics();
    if (status_.IsError())
        return status_;
    studyEffects_ = effectSizes.GetEffectSizeVal();
    studyLogEffects_ = effectSizes.GetLogEffectSizeVal();
    return status_;
}

template <class Pooling>
void MABinaryFixEffectModel::EstimateBy(MAPooledCounts<Pooling> counts, const std::vector<MATable>& asRead)
{
    RequireLength(studyCount_, studyEffects_);
    if constexpr (Pooling::onLogScale)
        RequireLength(studyCount_, studyLogEffects_);
    std::vector<std::size_t> included;
    included.reserve(studyCount_);
    for (std::size_t i = 0; i < studyCount_; ++i) {
        counts.Add(asRead[i], TableOf(i));
        if (counts.Includes(asRead[i]))
            included.push_back(i);
    }
    const MAPooledEffect pooled = counts.Effect();
    for (std::size_t i = 0; i < studyCount_; ++i)
        weights_[i] = counts.Weight(asRead[i], TableOf(i), pooled.isCorrected);
    correctedTables_ = pooled.correctedTables;
    const double quantile = TwoSidedNormalQuantile(alpha_);
    StoreEstimate<Pooling>(pooled, quantile);
    if (included.size() >= 2)
        TestHomogeneity<Pooling>(included, pooled.estimate, quantile);
}

/// The natural scale of a ratio follows from the log scale. Of the risk difference, the log members receive
/// the logs of the natural values, NaN for a negative one.
template <class Pooling>
void MABinaryFixEffectModel::StoreEstimate(const MAPooledEffect& pooled, double quantile)
{
    const MANormalInference inference =
        InferNormal(pooled.estimate, pooled.variance, NullOnTestScale<Pooling>(nullHypothesis_), quantile);
    zValue_ = inference.zValue;
    pValue_ = inference.pValue;
    const Scale tested = {pooled.estimate, pooled.variance, inference.stdError, inference.ciUpper,
                          inference.ciLower};
    if constexpr (Pooling::onLogScale) {
        log_ = tested;
        natural_.estimate = std::exp(log_.estimate);
        natural_.variance = std::exp(log_.variance);
        natural_.stdError = std::sqrt(natural_.variance);
        natural_.ciUpper = std::exp(log_.ciUpper);
        natural_.ciLower = std::exp(log_.ciLower);
    } else {
        natural_ = tested;
        log_ = {std::log(natural_.estimate), std::log(natural_.variance), std::log(natural_.stdError),
                std::log(natural_.ciUpper), std::log(natural_.ciLower)};
    }
}

template <class Pooling>
void MABinaryFixEffectModel::TestHomogeneity(const std::vector<std::size_t>& studies, double pooled,
                                             double quantile)
{
    const std::vector<double>& effects = Pooling::onLogScale ? studyLogEffects_ : studyEffects_;
    double q = 0.0;
    for (const std::size_t i : studies) {
        const double residual = effects[i] - pooled;
        q += 1.0 / Pooling::EffectVariance(TableOf(i)) * (residual * residual);
    }
    q_ = q;
    df_ = static_cast<int>(studies.size()) - 1;
    qPValue_ = HomogeneityPValue(q_, df_);
    heterogeneity_ = MeasureHeterogeneity(q_, studies.size(), quantile);
}

KXStatus MABinaryFixEffectModel::ContrastTest()
{
    if (contrastCoefficients_ == nullptr || status_.IsError())
        return status_;
    return Guarded(status_, [this] {
        KXStatus result = status_;
        WithBinaryPooling(method_, [&](auto pooling) { result = ContrastTestBy(pooling); });
        return result;
    });
}

template <class Pooling>
KXStatus MABinaryFixEffectModel::ContrastTestBy(Pooling /*method*/)
{
    if (!HasCounts() || !HaveLength(studyCount_, &studyEffects_, contrastCoefficients_))
        return KXStatus(MAStatusCode::LENGTH_MISMATCH);
    if (contrastEffects_.size() != studyCount_)
        PrepareContrastTerms<Pooling>();
    KXStatus result = status_;
    bool isDefined = true;
    contrast_ = 0.0;
    contrastVariance_ = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double coefficient = (*contrastCoefficients_)[i];
        if (KXMV::IsMissing(coefficient))
            result = KXStatus(MAStatusCode::CONTRAST_COEFFICIENT_MISSING, true);
        if (KXMV::IsMissing(coefficient) || coefficient == 0.0)
            continue;
        isDefined = isDefined && HasContrastTerm(i);
        contrast_ += coefficient * contrastEffects_[i];
        contrastVariance_ += coefficient * coefficient * contrastVariances_[i];
    }
    TestContrast(isDefined);
    return result;
}

/// The inference on a contrast; without one when it is not defined.
void MABinaryFixEffectModel::TestContrast(bool isDefined)
{
    if (!isDefined) {
        contrast_ = contrastVariance_ = KXMV::Missing();
        contrastPValue_ = MAPValue();
        contrastCIUpper_ = contrastCILower_ = KXMV::Missing();
        return;
    }
    const double stdError = std::sqrt(contrastVariance_);
    const double halfWidth = TwoSidedNormalQuantile(alpha_) * stdError;
    contrastPValue_ = contrastVariance_ > 0.0 ? TwoSidedNormalPValue(contrast_ / stdError) : MAPValue();
    contrastCIUpper_ = contrast_ + halfWidth;
    contrastCILower_ = contrast_ - halfWidth;
}

/// Whether the table has an effect of its own with a variance.
bool MABinaryFixEffectModel::HasContrastTerm(std::size_t study) const
{
    return !KXMV::IsMissing(contrastEffects_[study]) && std::isfinite(contrastVariances_[study]);
}

/// Once for all contrasts of the object: the studies' effects and variances on the scale of the test.
template <class Pooling>
void MABinaryFixEffectModel::PrepareContrastTerms()
{
    contrastEffects_ = Pooling::onLogScale ? studyLogEffects_ : studyEffects_;
    contrastVariances_.resize(studyCount_);
    for (std::size_t i = 0; i < studyCount_; ++i)
        contrastVariances_[i] = Pooling::EffectVariance(TableOf(i));
}

} // namespace MA_NAMESPACE
