#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/pooling/MARegressionTau2.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/Memory.h"

#include <span>
#include <utility>

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

KXStatus MATAU2ESTIMATIOR::SetDesignMatrix(const MADesignMatrix* design)
{
    if (status_.IsError())
        return status_;
    if (design != nullptr && StoreParameterCount(design->GetParamSize()).IsError())
        return status_;
    design_ = design;
    return status_;
}

KXStatus MATAU2ESTIMATIOR::SetRegCoef(const std::vector<double>* coefficients)
{
    if (status_.IsError() || coefficients == nullptr)
        return status_;
    return Guarded(status_, [&] {
        if (!StoreParameterCount(static_cast<int>(coefficients->size())).IsError())
            coefficients_ = *coefficients;
        return status_;
    });
}

/// The first to come fixes the parameter count, which 1 leaves open.
KXStatus MATAU2ESTIMATIOR::StoreParameterCount(int count)
{
    if (parameterCount_ == 1)
        parameterCount_ = count;
    else if (count != parameterCount_)
        status_ = KXStatus(MAStatusCode::PARAMETER_COUNT_MISMATCH);
    return status_;
}

KXStatus MATAU2ESTIMATIOR::SetDiagH(const std::vector<double>* leverages)
{
    if (status_.IsError() || leverages == nullptr)
        return status_;
    return Guarded(status_, [&] {
        leverageComplements_ = *leverages;
        for (double& complement : leverageComplements_)
            complement = 1.0 - complement;
        return status_;
    });
}

KXStatus MATAU2ESTIMATIOR::SetDiagHComplement(std::vector<double> complements)
{
    if (!status_.IsError())
        leverageComplements_ = std::move(complements);
    return status_;
}

KXStatus MATAU2ESTIMATIOR::SetRegResiduals(std::vector<double> residuals)
{
    if (!status_.IsError())
        residuals_ = std::move(residuals);
    return status_;
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
    if (!IsEstimator(type))
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
    estimate_ = EstimateTau2(MAEffects{*effectSizes_, *variances_}, choice_);
    return status_ = estimate_.status;
}

/// The variances vector holds the weights of Sidik and Jonkman's fit here.
KXStatus MATAU2ESTIMATIOR::ComputeRegression()
{
    if (!design_->IsReady())
        return status_ = KXStatus(MAStatusCode::ITERATOR_FAILED);
    if (coefficients_.size() != design_->Rows().columnCount)
        return status_ = KXStatus(MAStatusCode::PARAMETER_COUNT_MISMATCH);
    const std::vector<double> residuals = Residuals();
    const std::span<const double> weights =
        variances_ == nullptr ? std::span<const double>() : std::span<const double>(*variances_);
    estimate_ = EstimateTau2(
        MATau2Fit{*design_, residuals, leverageComplements_, weights, nonRedundantCount_}, choice_);
    return status_ = estimate_.status;
}

std::vector<double> MATAU2ESTIMATIOR::Residuals() const
{
    const MADesignRows& rows = design_->Rows();
    std::vector<double> residuals = residuals_;
    for (std::size_t i = residuals.size(); i < rows.Count(); ++i)
        residuals.push_back(rows.Dependent(i) - FittedValue(rows.Row(i)));
    return residuals;
}

/// The missing coefficients of redundant columns are left out.
double MATAU2ESTIMATIOR::FittedValue(const double* row) const
{
    double fitted = 0.0;
    for (std::size_t j = 0; j < coefficients_.size(); ++j) {
        if (!KXMV::IsMissing(coefficients_[j]))
            fitted += row[j] * coefficients_[j];
    }
    return fitted;
}

} // namespace MA_NAMESPACE
