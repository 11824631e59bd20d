// The estimators on the residuals of a meta-regression.

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/pooling/MATau2Steps.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/settings/Guarded.h"

#include <cmath>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// The iterative estimators leave out rows whose variance is not above this part of the mean variance: such a
/// row would decide alone. (One whose weight is as small beside the others' takes more than 1e12 rows.)
constexpr double negligibleVariance = 1e-12;

} // namespace

KXStatus MATAU2ESTIMATIOR::SetDesignMatrix(const MADesignMatrix* design)
{
    if (status_.IsError())
        return status_;
    if (design != nullptr) {
        const int reduced = design->GetReducedParamSize();
        if (StoreParameterCount(reduced != 0 ? reduced : design->GetParamSize()).IsError())
            return status_;
    }
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

KXStatus MATAU2ESTIMATIOR::ComputeRegression()
{
    if (!design_->IsReady())
        return status_ = KXStatus(MAStatusCode::ITERATOR_FAILED);
    if (coefficients_.size() != design_->Rows().columnCount)
        return status_ = KXStatus(MAStatusCode::PARAMETER_COUNT_MISMATCH);
    switch (choice_.estimator) {
    case MAConst::TAU2_HE:
        HERegEstimator();
        break;
    case MAConst::TAU2_HS:
        HSRegEstimator();
        break;
    case MAConst::TAU2_DL:
        DLRegEstimator();
        break;
    case MAConst::TAU2_SJ:
        SJRegEstimator();
        break;
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        HERegEstimator();
        if (status_.IsError())
            break;
        if (choice_.search == MAConst::TAU2_SEARCH_GLOBAL)
            SearchRegression();
        else
            IterateRegression();
        break;
    }
    return status_;
}

/// Fitted value; the missing coefficients of redundant columns are left out.
double MATAU2ESTIMATIOR::XBETA(const double* row) const
{
    double fitted = 0.0;
    for (std::size_t j = 0; j < coefficients_.size(); ++j) {
        if (!KXMV::IsMissing(coefficients_[j]))
            fitted += row[j] * coefficients_[j];
    }
    return fitted;
}

double MATAU2ESTIMATIOR::ResidualOf(std::size_t row) const
{
    return row < residuals_.size() ? residuals_[row]
                                   : design_->Rows().Dependent(row) - XBETA(design_->Rows().Row(row));
}

/// The divisor of the residual estimators: n - p, which must be positive; 460015 and 0 otherwise.
bool MATAU2ESTIMATIOR::HasResidualDf(std::size_t rowCount)
{
    if (static_cast<double>(rowCount) > nonRedundantCount_)
        return true;
    estimate_.tau2 = 0.0;
    status_ = KXStatus(MAStatusCode::TOO_FEW_ROWS);
    return false;
}

void MATAU2ESTIMATIOR::HERegEstimator()
{
    const MADesignRows& rows = design_->Rows();
    const std::size_t n = rows.Count();
    if (n != leverageComplements_.size()) {
        status_ = KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
        return;
    }
    if (!HasResidualDf(n))
        return;
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        sum += Square(ResidualOf(i)) - leverageComplements_[i] * rows.variances[i];
    estimate_.tau2 = TruncateAtZero(sum / (static_cast<double>(n) - nonRedundantCount_));
}

void MATAU2ESTIMATIOR::HSRegEstimator()
{
    const MADesignRows& rows = design_->Rows();
    double q = 0.0;
    double weightSum = 0.0;
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        q += Square(ResidualOf(i)) * rows.weights[i];
        weightSum += rows.weights[i];
    }
    estimate_.tau2 = TruncateAtZero((q - static_cast<double>(rows.Count())) / weightSum);
}

void MATAU2ESTIMATIOR::DLRegEstimator()
{
    const MADesignRows& rows = design_->Rows();
    const std::size_t n = rows.Count();
    if (n != leverageComplements_.size()) {
        status_ = KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
        return;
    }
    double q = 0.0;
    double c = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        q += Square(ResidualOf(i)) * rows.weights[i];
        c += leverageComplements_[i] * rows.weights[i];
    }
    const double df = static_cast<double>(n) - nonRedundantCount_;
    // Without residual degrees of freedom c is 0 but for rounding, and so is q.
    estimate_.tau2 = df == 0.0 || c == 0.0 ? 0.0 : TruncateAtZero((q - df) / c);
}

/// The variances vector holds the weights of the fit here, one per row.
void MATAU2ESTIMATIOR::SJRegEstimator()
{
    const std::size_t n = design_->Rows().Count();
    if (variances_ == nullptr || n != variances_->size()) {
        status_ = KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
        return;
    }
    if (!HasResidualDf(n))
        return;
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        sum += Square(ResidualOf(i)) * (*variances_)[i];
    estimate_.tau2 = TruncateAtZero(sum / (static_cast<double>(n) - nonRedundantCount_));
}

void MATAU2ESTIMATIOR::IterateRegression()
{
    MARegressionCurve curve(design_->Columns(), design_->Rows().variances, MALikelihoodType::Restricted);
    curve.LeaveOutUpTo(negligibleVariance * design_->MeanVariance());
    const MARegSettings& settings = design_->GetSettings();
    MAProgress progress(settings, settings.GetIterProgressListener());
    estimate_ = ScoreTau2(estimate_.tau2, choice_, nonRedundantCount_, [&](double tau2) {
        MATau2StepSums sums = RegressionSums(curve, tau2);
        sums.isCancelled = !progress.Step();
        return sums;
    });
    status_ = estimate_.status;
}

/// From the Hedges estimate. The host may cancel before it.
void MATAU2ESTIMATIOR::SearchRegression()
{
    const MARegSettings& settings = design_->GetSettings();
    if (!MAProgress(settings, settings.GetIterProgressListener()).Step()) {
        status_ = KXStatus(MAStatusCode::ITERATOR_FAILED);
        return;
    }
    const MAConst::TAU2ESTIMATOR type = choice_.estimator;
    MARegressionCurve curve(design_->Columns(), design_->Rows().variances, LikelihoodOf(type));
    const double start = estimate_.tau2;
    estimate_ = EstimateOf(SolveTau2(curve, type, start / curve.Unit()), curve.Unit());
    if (estimate_.convergence == MAConst::TAU2_STEP_NOT_FINITE)
        estimate_.tau2 = start;
}

/// Refits the regression at the current tau² and takes the sums of its residuals; of its leverages only where
/// they are needed, for they cost O(p²) a row.
MATau2StepSums MATAU2ESTIMATIOR::RegressionSums(MARegressionCurve& curve, double tau2)
{
    const MAProjectionSums fitted =
        curve.SumsAt(tau2 / curve.Unit(), choice_.estimator == MAConst::TAU2_REML);
    MATau2StepSums sums;
    sums.unit = curve.Unit();
    sums.count = fitted.count;
    sums.w1 = fitted.weights;
    sums.w2 = fitted.squaredWeights;
    sums.wr2 = fitted.yPy;
    sums.w2r2 = fitted.yPPy;
    sums.traceP = fitted.traceP;
    sums.tracePP = fitted.tracePP;
    return sums;
}

} // namespace MA_NAMESPACE
