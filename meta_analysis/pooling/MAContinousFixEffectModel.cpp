#include "meta_analysis/pooling/MAContinousFixEffectModel.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/pooling/MAContrast.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>

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
    return StoreSetting(value, choice_.nullHypothesis, status_);
}

KXStatus MAContinousFixEffectModel::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, choice_.alpha, status_);
}

KXStatus MAContinousFixEffectModel::EstimateMeanESStats()
{
    if (status_.IsError())
        return status_;
    if (!HaveLength(studyCount_, effectSizes_, variances_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] {
        weights_.resize(studyCount_);
        std::transform(variances_->begin(), variances_->end(), weights_.begin(),
                       [](double variance) { return 1.0 / variance; });
        model_ = PoolFixedEffect({*effectSizes_, *variances_}, choice_);
        return status_;
    });
}

KXStatus MAContinousFixEffectModel::ContrastTest()
{
    if (contrastCoefficients_ == nullptr)
        return KXStatus();
    if (!HaveLength(studyCount_, effectSizes_, variances_, contrastCoefficients_))
        return KXStatus(MAStatusCode::LENGTH_MISMATCH);
    const MAEstimate before = contrast_;
    const MAContrastTest test =
        TestContrast({*effectSizes_, *variances_}, *contrastCoefficients_, choice_.alpha);
    contrast_ = test.contrast;
    if (!(contrast_.variance > 0.0)) {
        contrast_.statistic = before.statistic;
        contrast_.pValue = before.pValue;
    }
    return test.status;
}

} // namespace MA_NAMESPACE
