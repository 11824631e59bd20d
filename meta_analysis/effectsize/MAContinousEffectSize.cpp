#include "meta_analysis/effectsize/MAContinousEffectSize.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/Guarded.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The group statistics of one study.
struct MAContinousEffectSize::Means
{
    double nt;
    double nc;
    double xt;
    double xc;
    double st;
    double sc;

    double Size() const { return nt + nc; }
    double Difference() const { return xt - xc; }
    double PooledVariance() const { return (sc * sc * (nc - 1.0) + st * st * (nt - 1.0)) / (nc + nt - 2.0); }
    /// Variance of a standardised difference of 0.
    double NullVariance() const { return Size() / (nt * nc); }
    double CohensD() const { return Difference() / std::sqrt(PooledVariance()); }
};

namespace {

/// Gamma(n + 1/2) / (sqrt(n) Gamma(n)) for large n, by its asymptotic series; the first term left out is
/// below 2e-17 for n >= 100.
double GammaRatioSeries(double n)
{
    const double r = 1.0 / n;
    return 1.0 +
           r * (-1.0 / 8.0 +
                r * (1.0 / 128.0 + r * (5.0 / 1024.0 + r * (-21.0 / 32768.0 + r * (-399.0 / 262144.0 +
                                                                                   r * 869.0 / 4194304.0)))));
}

/// Hedges' correction for small samples, J(m) = Gamma(m/2) / (sqrt(m/2) Gamma((m - 1)/2)), in its exact
/// form (Hedges 1981, Journal of Educational Statistics 6, 107-128). Not by logarithms of gamma functions:
/// their difference loses digits as m grows, six of them at m = 1e6. 0 where there is no correction (m <= 1).
double SmallSampleCorrection(double m)
{
    constexpr double seriesFrom = 201.0; // below it the gamma functions are far from overflow
    if (!(m > 1.0))
        return 0.0;
    if (m >= seriesFrom)
        return std::sqrt((m - 1.0) / m) * GammaRatioSeries((m - 1.0) / 2.0);
    return std::tgamma(m / 2.0) / (std::sqrt(m / 2.0) * std::tgamma((m - 1.0) / 2.0));
}

} // namespace

MAContinousEffectSize::MAContinousEffectSize() = default;
MAContinousEffectSize::MAContinousEffectSize(const MAContinousEffectSize&) = default;
MAContinousEffectSize& MAContinousEffectSize::operator=(const MAContinousEffectSize&) = default;
MAContinousEffectSize::~MAContinousEffectSize() = default;

KXStatus MAContinousEffectSize::SetTreatmentGSizes(const std::vector<double>* sizes)
{
    return StoreStudyVector(sizes, treatmentSizes_, studyCount_, status_);
}

KXStatus MAContinousEffectSize::SetControlGSizes(const std::vector<double>* sizes)
{
    return StoreStudyVector(sizes, controlSizes_, studyCount_, status_);
}

KXStatus MAContinousEffectSize::SetTreatmentGMeans(const std::vector<double>* means)
{
    return StoreStudyVector(means, treatmentMeans_, studyCount_, status_);
}

KXStatus MAContinousEffectSize::SetControlGMeans(const std::vector<double>* means)
{
    return StoreStudyVector(means, controlMeans_, studyCount_, status_);
}

KXStatus MAContinousEffectSize::SetTreatmentGStdErrors(const std::vector<double>* stdDevs)
{
    return StoreStudyVector(stdDevs, treatmentStdDevs_, studyCount_, status_);
}

KXStatus MAContinousEffectSize::SetControlGStdErrors(const std::vector<double>* stdDevs)
{
    return StoreStudyVector(stdDevs, controlStdDevs_, studyCount_, status_);
}

KXStatus MAContinousEffectSize::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, alpha_, status_);
}

KXStatus MAContinousEffectSize::SetEqualAssumptionofVariance(bool equal)
{
    return StoreSetting(equal, equalVariances_, status_);
}

KXStatus MAContinousEffectSize::SetVarianceAdjustment(bool adjust)
{
    return StoreSetting(adjust, varianceAdjustment_, status_);
}

KXStatus MAContinousEffectSize::SetGlassDsVarianceDependent(MAConst::STUDYGROUPTYPE group)
{
    return StoreSetting(group, glassGroup_, status_);
}

KXStatus MAContinousEffectSize::SetEstimationMethod(MAConst::CONTESTYPE method)
{
    const KXStatus stored = StoreSetting(method, method_, status_);
    return stored.IsError() ? stored : KXStatus();
}

KXStatus MAContinousEffectSize::ComputeEffectSizeStatistics()
{
    if (status_.IsError())
        return status_;
    if (!HaveLength(studyCount_, treatmentSizes_, controlSizes_, treatmentMeans_, controlMeans_,
                    treatmentStdDevs_, controlStdDevs_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] { return ComputeStatistics(); });
}

KXStatus MAContinousEffectSize::ComputeStatistics()
{
    switch (method_) {
    case MAConst::CONT_MEAN_DIFFERENCE:
        ComputeMeanDiffEffectSize();
        ComputeMeanDiffVariance();
        break;
    case MAConst::CONT_COHENS_D:
        ComputeCohensDEffectSize();
        ComputeCohensDVariance();
        break;
    case MAConst::CONT_HEDGES_G:
        ComputeHedgesGEffectSize();
        ComputeHedgesGVariance();
        break;
    case MAConst::CONT_GLASS_DELTA:
        ComputeGlasSDeltaEffectSize();
        ComputeGlasSDeltaVariance();
        break;
    default:
        return status_;
    }
    ComputeCIBound(TwoSidedNormalQuantile(alpha_));
    ComputeTests();
    return status_;
}

MAContinousEffectSize::Means MAContinousEffectSize::MeansOf(std::size_t study) const
{
    return {(*treatmentSizes_)[study], (*controlSizes_)[study],     (*treatmentMeans_)[study],
            (*controlMeans_)[study],   (*treatmentStdDevs_)[study], (*controlStdDevs_)[study]};
}

template <class Function>
void MAContinousEffectSize::FillEffectSizes(Function effectSizeOf)
{
    effectSizes_.resize(studyCount_);
    for (std::size_t i = 0; i < studyCount_; ++i)
        effectSizes_[i] = effectSizeOf(i);
}

template <class Function>
void MAContinousEffectSize::FillVariances(Function varianceOf)
{
    variances_.resize(studyCount_);
    stdErrors_.resize(studyCount_);
    for (std::size_t i = 0; i < studyCount_; ++i) {
        variances_[i] = varianceOf(i);
        stdErrors_[i] = std::sqrt(variances_[i]);
    }
}

void MAContinousEffectSize::ComputeMeanDiffEffectSize()
{
    FillEffectSizes([this](std::size_t i) { return MeansOf(i).Difference(); });
}

void MAContinousEffectSize::ComputeMeanDiffVariance()
{
    FillVariances([this](std::size_t i) {
        const Means study = MeansOf(i);
        return equalVariances_ ? study.PooledVariance() * (1.0 / study.nc + 1.0 / study.nt)
                               : study.st * study.st / study.nt + study.sc * study.sc / study.nc;
    });
}

void MAContinousEffectSize::ComputeCohensDEffectSize()
{
    FillEffectSizes([this](std::size_t i) { return MeansOf(i).CohensD(); });
}

void MAContinousEffectSize::ComputeCohensDVariance()
{
    FillVariances([this](std::size_t i) {
        const Means study = MeansOf(i);
        const double d = effectSizes_[i];
        const double divisor = varianceAdjustment_ ? study.Size() - 2.0 : study.Size();
        return d * d / (2.0 * divisor) + study.NullVariance();
    });
}

void MAContinousEffectSize::ComputeHedgesGEffectSize()
{
    FillEffectSizes([this](std::size_t i) {
        const Means study = MeansOf(i);
        return study.CohensD() * SmallSampleCorrection(study.nt + study.nc - 2.0);
    });
}

/// Both forms put g where the variance of d has d. The adjusted form divides by N - 3.94, the plain one
/// is the variance of d times the squared correction.
void MAContinousEffectSize::ComputeHedgesGVariance()
{
    FillVariances([this](std::size_t i) {
        const Means study = MeansOf(i);
        const double g = effectSizes_[i];
        if (varianceAdjustment_)
            return g * g / (2.0 * (study.Size() - 3.94)) + study.NullVariance();
        const double correction = SmallSampleCorrection(study.Size() - 2.0);
        return correction * correction * (g * g / (2.0 * study.Size()) + study.NullVariance());
    });
}

void MAContinousEffectSize::ComputeGlasSDeltaEffectSize()
{
    FillEffectSizes([this](std::size_t i) {
        const Means study = MeansOf(i);
        return study.Difference() / (glassGroup_ == MAConst::GROUP_TREATMENT ? study.st : study.sc);
    });
}

void MAContinousEffectSize::ComputeGlasSDeltaVariance()
{
    FillVariances([this](std::size_t i) {
        const Means study = MeansOf(i);
        const double delta = effectSizes_[i];
        const double divisorSize = glassGroup_ == MAConst::GROUP_TREATMENT ? study.nt : study.nc;
        return study.NullVariance() + delta * delta / (2.0 * (divisorSize - 1.0));
    });
}

void MAContinousEffectSize::ComputeCIBound(double z)
{
    ciUpper_.resize(studyCount_);
    ciLower_.resize(studyCount_);
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double halfWidth = z * stdErrors_[i];
        ciUpper_[i] = effectSizes_[i] + halfWidth;
        ciLower_[i] = effectSizes_[i] - halfWidth;
    }
}

void MAContinousEffectSize::ComputeTests()
{
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double z = effectSizes_[i] / stdErrors_[i];
        zValues_.push_back(z);
        significances_.push_back(TwoSidedNormalPValue(z).value);
    }
}

} // namespace MA_NAMESPACE
