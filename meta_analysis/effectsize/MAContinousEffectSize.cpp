#include "meta_analysis/effectsize/MAContinousEffectSize.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/effectsize/MAMeans.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

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
    return StoreSetting(equal, choice_.equalVariances, status_);
}

KXStatus MAContinousEffectSize::SetVarianceAdjustment(bool adjust)
{
    return StoreSetting(adjust, choice_.adjustsVariance, status_);
}

KXStatus MAContinousEffectSize::SetGlassDsVarianceDependent(MAConst::STUDYGROUPTYPE group)
{
    return StoreSetting(group, choice_.glassGroup, status_);
}

KXStatus MAContinousEffectSize::SetEstimationMethod(MAConst::CONTESTYPE method)
{
    const KXStatus stored = StoreSetting(method, choice_.measure, status_);
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

MAMeans MAContinousEffectSize::MeansOf(std::size_t study) const
{
    return {(*treatmentSizes_)[study], (*controlSizes_)[study],     (*treatmentMeans_)[study],
            (*controlMeans_)[study],   (*treatmentStdDevs_)[study], (*controlStdDevs_)[study]};
}

KXStatus MAContinousEffectSize::ComputeStatistics()
{
    if (!IsMeasure(choice_.measure))
        return status_;
    results_.Restart(studyCount_);
    const double quantile = TwoSidedNormalQuantile(alpha_);
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MAMeansEffect study = EffectOf(MeansOf(i), choice_);
        results_.Append(InferNormal(study.effect, study.variance, 0.0, quantile));
    }
    return status_;
}

} // namespace MA_NAMESPACE
