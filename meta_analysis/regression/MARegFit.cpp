#include "meta_analysis/regression/MARegFit.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace MA_NAMESPACE {

namespace {

/// Below it a dispersion counts as zero: the fit is exact. Weighted residuals are of order 1 when a model
/// fits, and the square of the rounding error of one is some 1e-32; this leaves room for variances far
/// from 1.
constexpr double negligibleDispersion = 1e-12;

double WeightOf(MAWeightMode mode, double tau2, double omegaWeight, double variance)
{
    if (mode == MAWeightMode::FixedEffect)
        return omegaWeight;
    if (mode == MAWeightMode::Unweighted)
        return 1.0;
    return (mode == MAWeightMode::ScaledRandom ? tau2 : 1.0) / (variance + tau2);
}

} // namespace

MARegFit::MARegFit(const MADesignMatrix& design, MAWeightMode mode, double tau2)
    : design_(&design),
      columns_(&design.Columns()),
      mode_(mode),
      tau2_(tau2),
      progress_(design.GetSettings(), design.GetSettings().GetIterProgressListener()),
      fit_(*columns_)
{}

KXStatus MARegFit::Fit()
{
    WeighRows();
    fit_.Fit(weights_, false);
    ComputeCoefficients();
    return progress_.Step() ? KXStatus() : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

/// Members are copied, and good weights counted in their width, so that the loop becomes one of vector
/// instructions: it has a division a row.
void MARegFit::WeighRows()
{
    const MADesignRows& rows = design_->Rows();
    weights_.resize(rows.Count());
    const double* const omegaWeights = rows.weights.data();
    const double* const variances = rows.variances.data();
    double* const weights = weights_.data();
    const MAWeightMode mode = mode_;
    const double tau2 = tau2_;
    const std::size_t count = rows.Count();
    std::size_t goodCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double weight = WeightOf(mode, tau2, omegaWeights[i], variances[i]);
        const bool isGood = weight > 0.0 && std::isfinite(weight);
        weights[i] = isGood ? weight : 0.0;
        goodCount += isGood ? 1 : 0;
    }
    goodRecords_ = static_cast<int>(goodCount);
}

void MARegFit::ComputeCoefficients()
{
    coordinates_ = fit_.Coordinates();
    factor_ = fit_.Factor();
    for (std::size_t j = 0; j < coordinates_.size(); ++j)
        coordinates_[j] += columns_->UnweightedCoordinates()[j];
    coefficients_.assign(columns_->NonRedundant().Size(), KXMV::Missing());
    for (std::size_t j = 0; j < columns_->Rank(); ++j) {
        const std::vector<double> direction = columns_->DirectionOfCoefficient(j);
        const double start = j == 0 && design_->HasIntercept() ? columns_->DependentCentre() : 0.0;
        coefficients_[columns_->Kept()[j]] =
            std::inner_product(direction.begin(), direction.end(), coordinates_.begin(), start);
    }
}

/// Before scaling, of d'g: |R'⁻¹d|.
double MARegFit::StdErrorOf(std::vector<double> direction) const
{
    SolveTransposed(factor_, direction.data());
    return std::sqrt(std::inner_product(direction.begin(), direction.end(), direction.begin(), 0.0));
}

std::vector<double> MARegFit::Residuals() const
{
    std::vector<double> residuals;
    residuals.reserve(weights_.size());
    fit_.VisitRows(false, [&](const MAFittedRows& rows) {
        residuals.insert(residuals.end(), rows.residuals, rows.residuals + rows.count);
    });
    return residuals;
}

std::vector<double> MARegFit::LeverageComplements() const
{
    return MAWeightedFit(fit_).LeverageComplements();
}

double MARegFit::WeightedResidualSum() const
{
    double sum = 0.0;
    fit_.VisitRows(false, [&](const MAFittedRows& rows) {
        for (std::size_t i = 0; i < rows.count; ++i)
            sum += weights_[rows.first + i] * rows.residuals[i] * rows.residuals[i];
    });
    return sum;
}

KXStatus MARegFit::ComputeDispersion()
{
    dispersion_ = 1.0;
    if (ResidualDf() == 0)
        return KXStatus(MAStatusCode::AS_MANY_STUDIES_AS_PARAMETERS, true);
    const double dispersion = WeightedResidualSum() / ResidualDf();
    if (std::abs(dispersion) < negligibleDispersion)
        return KXStatus(MAStatusCode::DISPERSION_NEAR_ZERO, true);
    dispersion_ = dispersion;
    scale_ = dispersion;
    return KXStatus();
}

/// 0 without residual degrees of freedom for Student's t, so that intervals shrink to a point.
double MARegFit::CriticalValue(bool useStudentT) const
{
    const double alpha = AlphaOf(design_->GetSettings().GetConfidenceLevel());
    if (!useStudentT)
        return TwoSidedNormalQuantile(alpha);
    return ResidualDf() == 0 ? 0.0 : TwoSidedTQuantile(alpha, ResidualDf());
}

void MARegFit::ComputeCoefficientTests(bool useStudentT)
{
    const std::size_t count = coefficients_.size();
    for (std::vector<double>* list : {&stdErrors_, &statistics_, &lowerLimits_, &upperLimits_})
        list->assign(count, KXMV::Missing());
    pValues_.assign(count, MAPValue());
    if (KXMV::IsMissing(scale_))
        return;
    const double critical = CriticalValue(useStudentT);
    for (std::size_t index = 0; index < columns_->Rank(); ++index) {
        const std::size_t j = columns_->Kept()[index];
        stdErrors_[j] = std::sqrt(scale_) * StdErrorOf(columns_->DirectionOfCoefficient(index));
        lowerLimits_[j] = coefficients_[j] - critical * stdErrors_[j];
        upperLimits_[j] = coefficients_[j] + critical * stdErrors_[j];
        if (!(stdErrors_[j] > 0.0)) // an exact fit under Knapp and Hartung
            continue;
        statistics_[j] = coefficients_[j] / stdErrors_[j];
        if (!useStudentT)
            pValues_[j] = TwoSidedNormalPValue(statistics_[j]);
        else if (ResidualDf() != 0)
            pValues_[j] = TwoSidedTPValue(statistics_[j], ResidualDf());
    }
}

/// The Wald statistic b₁'M₁⁻¹b₁ is |R₁g₁|² with the part R₁ of the triangle beside the intercept, whose
/// coordinate is the first.
MAModelTest MARegFit::TestModel(bool asF) const
{
    const std::size_t rank = columns_->Rank();
    const std::size_t first = design_->HasIntercept() && rank > 0 ? 1 : 0;
    MAModelTest test;
    test.df1 = static_cast<int>(rank - first);
    test.df2 = ResidualDf();
    if (test.df1 == 0 || !(scale_ > 0.0)) // a missing scale is negative
        return test;
    double wald = 0.0;
    for (std::size_t i = first; i < rank; ++i) {
        double share = 0.0;
        for (std::size_t j = i; j < rank; ++j)
            share += factor_(i, j) * coordinates_[j];
        wald += share * share;
    }
    if (asF) {
        test.statistic = wald / (scale_ * test.df1);
        if (test.df2 != 0)
            test.pValue = FPValue(test.statistic, test.df1, test.df2);
    } else {
        test.statistic = wald / dispersion_;
        test.pValue = ChiSquarePValue(test.statistic, test.df1);
    }
    return test;
}

KXStatus MARegFit::ComputeResidualHeterogeneity()
{
    residualQ_ = WeightedResidualSum();
    if (ResidualDf() == 0)
        return KXStatus(MAStatusCode::NO_RESIDUAL_DF, true);
    residualQPValue_ = ChiSquarePValue(residualQ_, ResidualDf());
    return KXStatus();
}

/// Standard error of the residual of a record with this leverage and weight. Rounding can carry the leverage
/// of a study that alone determines its fitted value beyond 1, by a margin that grows with the condition of
/// the design; beyond that it is the leverage of a record outside the fit, which has no such standard error.
double MARegFit::ResidualStdError(double leverage, double weight) const
{
    constexpr double margin = 1e-6;
    if (!(leverage <= 1.0 + margin))
        return KXMV::Missing();
    return std::sqrt(scale_ * std::max(0.0, 1.0 - leverage) / weight);
}

/// The leverage belongs to the unscaled fit, so that the leverages sum to the number of parameters whatever
/// the scale. Without a scale there is no standard error, but still a fit.
MAPrediction MARegFit::Predict(const MADesignRow& row, bool hasStudy, double criticalValue) const
{
    MAPrediction prediction;
    if (row.isBad || row.predictors.size() != coefficients_.size())
        return prediction;
    const std::vector<double> z = columns_->Coordinates(row.predictors.data());
    const double distance = StdErrorOf(z);
    const double weight = WeightOf(mode_, tau2_, row.omegaWeight, 1.0 / row.omegaWeight);
    prediction.fit =
        std::inner_product(z.begin(), z.end(), coordinates_.begin(), columns_->DependentCentre());
    if (hasStudy) {
        prediction.residual = row.dependent - prediction.fit;
        prediction.leverage = distance * distance * weight;
    }
    if (KXMV::IsMissing(scale_))
        return prediction;
    prediction.stdError = std::sqrt(scale_) * distance;
    const double halfWidth = criticalValue * prediction.stdError;
    prediction.ciLower = prediction.fit - halfWidth;
    prediction.ciUpper = prediction.fit + halfWidth;
    if (hasStudy)
        prediction.residualStdError = ResidualStdError(prediction.leverage, weight);
    return prediction;
}

} // namespace MA_NAMESPACE
