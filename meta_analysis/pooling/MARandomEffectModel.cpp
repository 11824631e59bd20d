#include "meta_analysis/pooling/MARandomEffectModel.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

/// Until an estimation tau² is 0.
MARandomEffectModel::MARandomEffectModel()
{
    model_.tau2 = 0.0;
}

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
    return StoreSetting(type, choice_.knappHartung, status_);
}

KXStatus MARandomEffectModel::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, choice_.alpha, status_);
}

KXStatus MARandomEffectModel::SetMaxIter(int maxIter)
{
    return StoreSetting(maxIter, choice_.limits.maxIter, status_);
}

KXStatus MARandomEffectModel::SetMaxStepHalving(int maxStepHalving)
{
    return StoreSetting(maxStepHalving, choice_.limits.maxStepHalving, status_);
}

KXStatus MARandomEffectModel::SetConverTol(double tolerance)
{
    return StoreSetting(tolerance, choice_.limits.tolerance, status_);
}

KXStatus MARandomEffectModel::SetEstimationType(MAConst::TAU2ESTIMATOR type)
{
    return StoreSetting(type, choice_.estimator, status_);
}

KXStatus MARandomEffectModel::SetTau2Search(MAConst::TAU2SEARCH search)
{
    return StoreSetting(search, choice_.search, status_);
}

KXStatus MARandomEffectModel::SetTau2Interval(MAConst::TAU2INTERVAL type)
{
    return StoreSetting(type, choice_.tau2Interval, status_);
}

KXStatus MARandomEffectModel::SetPrediction(MAConst::PREDICTIONTYPE type)
{
    return StoreSetting(type, choice_.prediction, status_);
}

KXStatus MARandomEffectModel::SetProbabilityAbove(double threshold)
{
    StoreSetting(true, choice_.isThresholdAbove, status_);
    return StoreSetting(threshold, choice_.threshold, status_);
}

KXStatus MARandomEffectModel::SetProbabilityBelow(double threshold)
{
    StoreSetting(false, choice_.isThresholdAbove, status_);
    return StoreSetting(threshold, choice_.threshold, status_);
}

KXStatus MARandomEffectModel::EstimateMeanESStats()
{
    if (status_.IsError())
        return status_;
    if (effectSizes_ == nullptr || variances_ == nullptr)
        return status_ = KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    if (!HaveLength(studyCount_, effectSizes_, variances_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] {
        model_ = PoolRandomEffects(Studies(), choice_);
        return status_ = model_.status;
    });
}

bool MARandomEffectModel::HasDoubtfulTau2() const
{
    return HaveLength(studyCount_, effectSizes_, variances_) && IsTau2Doubtful(Studies(), choice_, model_);
}

MAEffects MARandomEffectModel::Studies() const
{
    return {*effectSizes_, *variances_};
}

} // namespace MA_NAMESPACE
