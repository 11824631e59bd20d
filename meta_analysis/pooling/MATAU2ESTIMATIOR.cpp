#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/settings/Guarded.h"

namespace MA_NAMESPACE {

MATAU2ESTIMATIOR::MATAU2ESTIMATIOR() = default;
MATAU2ESTIMATIOR::MATAU2ESTIMATIOR(const MATAU2ESTIMATIOR&) = default;
MATAU2ESTIMATIOR& MATAU2ESTIMATIOR::operator=(const MATAU2ESTIMATIOR&) = default;
MATAU2ESTIMATIOR::~MATAU2ESTIMATIOR() = default;

KXStatus MATAU2ESTIMATIOR::SetEffectSizes(const std::vector<double>* effectSizes)
{
    return StoreStudyVector(effectSizes, effectSizes_, studyCount_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetVariances(const std::vector<double>* variances)
{
    return StoreStudyVector(variances, variances_, studyCount_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetNonRedundantParamSize(int size)
{
    if (!status_.IsError() && size > parameterCount_)
        return status_ = KXStatus(MAStatusCode::TOO_MANY_NONREDUNDANT);
    return StoreSetting(size, nonRedundantCount_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetMaxIter(int maxIter)
{
    return StoreSetting(maxIter, choice_.limits.maxIter, status_);
}

KXStatus MATAU2ESTIMATIOR::SetMaxStepHalving(int maxStepHalving)
{
    return StoreSetting(maxStepHalving, choice_.limits.maxStepHalving, status_);
}

KXStatus MATAU2ESTIMATIOR::SetConverTol(double tolerance)
{
    return StoreSetting(tolerance, choice_.limits.tolerance, status_);
}

KXStatus MATAU2ESTIMATIOR::SetTau2Search(MAConst::TAU2SEARCH search)
{
    return StoreSetting(search, choice_.search, status_);
}

KXStatus MATAU2ESTIMATIOR::ComputeTau2Variance(MAConst::TAU2ESTIMATOR type)
{
    if (status_.IsError())
        return status_;
    estimate_.convergence = MAConst::TAU2_CLOSED_FORM;
    estimate_.evaluations = 0;
    if (type < MAConst::TAU2_HE || type > MAConst::TAU2_EB)
        return status_;
    choice_.estimator = type;
    return Guarded(status_, [this] { return UsesRegression() ? ComputeRegression() : ComputePlain(); });
}

KXStatus MATAU2ESTIMATIOR::ComputePlain()
{
    if (effectSizes_ == nullptr || variances_ == nullptr)
        return status_ = KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    if (!HaveLength(studyCount_, effectSizes_, variances_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    estimate_ = EstimateTau2({*effectSizes_, *variances_}, choice_);
    return status_;
}

} // namespace MA_NAMESPACE
