#include "meta_analysis/effectsize/MABinaryEffectSize.h"

#include "meta_analysis/effectsize/MACountColumns.h"
#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/effectsize/MAStudyEstimate.h"
#include "meta_analysis/effectsize/MATableEffect.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/settings/Memory.h"

#include <cmath>

namespace MA_NAMESPACE {

MABinaryEffectSize::MABinaryEffectSize() = default;
MABinaryEffectSize::MABinaryEffectSize(const MABinaryEffectSize&) = default;
MABinaryEffectSize& MABinaryEffectSize::operator=(const MABinaryEffectSize&) = default;
MABinaryEffectSize::~MABinaryEffectSize() = default;

KXStatus MABinaryEffectSize::SetTreatmentGSuccessCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, treatmentSuccesses_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetControlGSuccessCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, controlSuccesses_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetTreatmentGFailureCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, treatmentFailures_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetControlGFailureCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, controlFailures_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetZeroCountDelta(double delta)
{
    return StoreSetting(delta, zeroCountDelta_, status_);
}

KXStatus MABinaryEffectSize::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, alpha_, status_);
}

KXStatus MABinaryEffectSize::SetZeroAdjType(MAConst::ZEROADJTYPE type)
{
    return StoreSetting(type, zeroAdjustment_, status_);
}

KXStatus MABinaryEffectSize::SetEstimationMethod(MAConst::BINESTYPE method)
{
    const KXStatus stored = StoreSetting(method, method_, status_);
    return stored.IsError() ? stored : KXStatus();
}

MACountColumns MABinaryEffectSize::Counts() const
{
    return {treatmentSuccesses_, treatmentFailures_, controlSuccesses_, controlFailures_};
}

void MABinaryEffectSize::AdjustZeroCounts()
{
    if (!Counts().HaveLength(studyCount_))
        return;
    Guarded(status_, [this] {
        const std::vector<MATable> tables = Counts().Tables();
        const MAZeroCorrection correction =
            MAZeroCorrection{zeroAdjustment_, zeroCountDelta_}.ResolvedFor(tables);
        zeroAdjustment_ = correction.type;
        Counts().StoreCorrected(tables, correction);
        return status_;
    });
}

KXStatus MABinaryEffectSize::ComputeEffectSizeStatistics()
{
    if (status_.IsError())
        return status_;
    if (!Counts().HaveLength(studyCount_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] {
        AdjustZeroCounts();
        if (!status_.IsError())
            WithMeasure(method_, [this](auto measure) { ComputeBy<decltype(measure)>(); });
        return status_;
    });
}

template <class Measure>
void MABinaryEffectSize::ComputeBy()
{
    natural_.Restart(studyCount_, Measure::hasGroups);
    log_.Restart(Measure::onLogScale ? studyCount_ : 0, Measure::hasGroups);
    const double quantile = TwoSidedNormalQuantile(alpha_);
    for (const MATable& table : Counts().Tables())
        AppendStudy<Measure>(table, quantile);
}

void MABinaryEffectSize::Scale::Restart(std::size_t count, bool hasGroups)
{
    MAEstimateColumns::Restart(count);
    for (std::vector<double>* column : {&treatmentRatio, &controlRatio}) {
        column->clear();
        column->reserve(hasGroups ? count : 0);
    }
}

template <class Measure>
void MABinaryEffectSize::AppendStudy(const MATable& table, double quantile)
{
    const MATableEffect study = EffectBy<Measure>(table);
    const MAEstimate estimate = EstimateOfStudy(study.effect, study.variance, quantile);
    if constexpr (Measure::onLogScale) {
        log_.Append(estimate);
        MAEstimate natural = StudyRatio(estimate, Measure::NaturalEffect(table, study.effect));
        natural.statistic = RatioOf(estimate.statistic);
        natural.pValue.value = RatioOf(estimate.pValue.value);
        natural_.Append(natural);
    } else {
        natural_.Append(estimate);
    }
    if constexpr (Measure::hasGroups) {
        const MAGroupValues groups = Measure::NaturalGroups(table, study.groups);
        natural_.treatmentRatio.push_back(groups.treatment);
        natural_.controlRatio.push_back(groups.control);
        if constexpr (Measure::onLogScale) {
            log_.treatmentRatio.push_back(study.groups.treatment);
            log_.controlRatio.push_back(study.groups.control);
        }
    }
}

} // namespace MA_NAMESPACE
