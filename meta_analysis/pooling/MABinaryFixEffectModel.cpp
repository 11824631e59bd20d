#include "meta_analysis/pooling/MABinaryFixEffectModel.h"

#include "meta_analysis/effectsize/MACountColumns.h"
#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/pooling/MAContrast.h"
#include "meta_analysis/pooling/MATablePooling.h"
#include "meta_analysis/settings/MAMeasures.h"
#include "meta_analysis/settings/Memory.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

MAEstimate Logs(const MAEstimate& natural)
{
    MAEstimate logs;
    logs.estimate = std::log(natural.estimate);
    logs.variance = std::log(natural.variance);
    logs.stdError = std::log(natural.stdError);
    logs.ciLower = std::log(natural.ciLower);
    logs.ciUpper = std::log(natural.ciUpper);
    return logs;
}

} // namespace

/// Until a contrast is tested it is 0, and so is its variance.
MABinaryFixEffectModel::MABinaryFixEffectModel()
{
    contrast_.estimate = contrast_.variance = 0.0;
}
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

KXStatus MABinaryFixEffectModel::SetZeroCountDelta(double /*delta*/)
{
    return status_;
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

MACountColumns MABinaryFixEffectModel::Counts() const
{
    return {treatmentSuccesses_, treatmentFailures_, controlSuccesses_, controlFailures_};
}

MATablePoolingChoice MABinaryFixEffectModel::Choice() const
{
    MATablePoolingChoice choice;
    choice.measure = method_;
    choice.correction.type = zeroAdjustment_;
    choice.pooledZeroCells = pooledZeroCells_;
    choice.nullHypothesis = nullHypothesis_;
    choice.alpha = alpha_;
    return choice;
}

KXStatus MABinaryFixEffectModel::ComputeEffectSizeStatistics()
{
    if (status_.IsError())
        return status_;
    if (!Counts().HaveLength(studyCount_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] { return ComputeStatistics(); });
}

KXStatus MABinaryFixEffectModel::ComputeStatistics()
{
    const std::vector<MATable> asRead = Counts().Tables();
    Counts().StoreCorrected(asRead, Choice().correction.ResolvedFor(asRead));
    MAPooledTables pooled = PoolTables(asRead, Choice());
    model_ = pooled.model;
    SetScales(pooled.ratio);
    weights_.swap(pooled.weights);
    correctedTables_ = pooled.correctedTables;
    MATableEffects effects = EffectsOfTables(asRead, Choice());
    tableEffects_.swap(effects.effectSizes);
    tableVariances_.swap(effects.variances);
    return status_;
}

/// The natural scale of a ratio follows from the log scale. Of the risk difference, the log members receive
/// the logs of the natural values, NaN for a negative one.
void MABinaryFixEffectModel::SetScales(const MAEstimate& ratio)
{
    const bool onLogScale = IsOnLogScale(method_);
    natural_ = onLogScale ? ratio : model_.effect;
    log_ = onLogScale ? model_.effect : Logs(natural_);
}

KXStatus MABinaryFixEffectModel::ContrastTest()
{
    if (contrastCoefficients_ == nullptr || status_.IsError() || !IsMeasure(method_))
        return status_;
    if (!Counts().HaveLength(studyCount_) ||
        !HaveLength(studyCount_, &tableEffects_, &tableVariances_, contrastCoefficients_))
        return KXStatus(MAStatusCode::LENGTH_MISMATCH);
    const MAContrastTest test =
        TestTableContrast({tableEffects_, tableVariances_}, *contrastCoefficients_, alpha_);
    contrast_ = test.contrast;
    return test.status;
}

} // namespace MA_NAMESPACE
