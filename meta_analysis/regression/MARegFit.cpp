#include "meta_analysis/regression/MARegFit.h"

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>
#include <numeric>
#include <utility>

namespace MA_NAMESPACE {

namespace {

double WeightOf(MAWeightMode mode, double tau2, double omegaWeight, double variance)
{
    if (mode == MAWeightMode::FixedEffect)
        return omegaWeight;
    if (mode == MAWeightMode::Unweighted)
        return 1.0;
    return (mode == MAWeightMode::ScaledRandom ? tau2 : 1.0) / (variance + tau2);
}

double NormOf(const std::vector<double>& values)
{
    return std::sqrt(std::inner_product(values.begin(), values.end(), values.begin(), 0.0));
}

} // namespace

MARegFit::MARegFit(const MADesignMatrix& design, MAWeightMode mode, double tau2)
    : design_(&design), columns_(&design.Columns()), mode_(mode), tau2_(tau2), fit_(*columns_)
{}

KXStatus MARegFit::Fit(MAWeightMode mode, double tau2)
{
    mode_ = mode;
    tau2_ = tau2;
    return Fit();
}

KXStatus MARegFit::Fit()
{
    WeighRows();
    fit_.Fit(weights_, false);
    ComputeCoefficients();
    const MARegSettings& settings = design_->GetSettings();
    return MAProgress(settings, settings.GetIterProgressListener()).Step()
               ? KXStatus()
               : KXStatus(MAStatusCode::ITERATOR_FAILED);
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
    fit_.Coordinates(coordinates_);
    fit_.Factor(factor_);
    for (std::size_t j = 0; j < coordinates_.size(); ++j)
        coordinates_[j] += columns_->UnweightedCoordinates()[j];
    coefficients_.assign(columns_->NonRedundant().Size(), KXMV::Missing());
    for (std::size_t j = 0; j < columns_->Rank(); ++j) {
        columns_->DirectionOfCoefficient(j, direction_);
        const double start = j == 0 && design_->HasIntercept() ? columns_->DependentCentre() : 0.0;
        coefficients_[columns_->Kept()[j]] =
            std::inner_product(direction_.begin(), direction_.end(), coordinates_.begin(), start);
    }
}

void MARegFit::Direction(std::size_t position, std::vector<double>& direction) const
{
    columns_->DirectionOfCoefficient(position, direction);
    SolveTransposed(factor_, direction.data());
}

std::vector<double> MARegFit::Direction(std::size_t position) const
{
    std::vector<double> direction;
    Direction(position, direction);
    return direction;
}

double MARegFit::UnscaledStdError(std::size_t position, std::vector<double>& direction) const
{
    Direction(position, direction);
    return NormOf(direction);
}

double MARegFit::UnscaledStdError(std::size_t position) const
{
    std::vector<double> direction;
    return UnscaledStdError(position, direction);
}

void MARegFit::Residuals(std::vector<double>& residuals) const
{
    residuals.clear();
    residuals.reserve(weights_.size());
    fit_.VisitRows(false, [&](const MAFittedRows& rows) {
        residuals.insert(residuals.end(), rows.residuals, rows.residuals + rows.count);
    });
}

void MARegFit::LeverageComplements(MAWeightedFit& workspace, std::vector<double>& complements) const
{
    workspace = fit_;
    workspace.LeverageComplements(complements);
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

/// |R₁g₁|² with the part R₁ of the triangle beside the intercept, whose coordinate is the first.
double MARegFit::WaldStatistic() const
{
    const std::size_t rank = columns_->Rank();
    double wald = 0.0;
    for (std::size_t i = FirstTested(); i < rank; ++i) {
        double share = 0.0;
        for (std::size_t j = i; j < rank; ++j)
            share += factor_(i, j) * coordinates_[j];
        wald += share * share;
    }
    return wald;
}

int MARegFit::TestedCount() const
{
    return static_cast<int>(columns_->Rank() - FirstTested());
}

MARegFit::Combination MARegFit::Combine(const std::vector<double>& weights) const
{
    std::vector<double> direction = columns_->DirectionOf(weights);
    const double start =
        design_->HasIntercept() && !weights.empty() ? weights.front() * columns_->DependentCentre() : 0.0;
    const double value = std::inner_product(direction.begin(), direction.end(), coordinates_.begin(), start);
    SolveTransposed(factor_, direction.data());
    return {value, std::move(direction)};
}

MARegFit::Point MARegFit::At(const MADesignRow& row) const
{
    std::vector<double> z = columns_->Coordinates(row.predictors.data());
    const double value =
        std::inner_product(z.begin(), z.end(), coordinates_.begin(), columns_->DependentCentre());
    SolveTransposed(factor_, z.data());
    return {value, NormOf(z), WeightOf(mode_, tau2_, row.omegaWeight, 1.0 / row.omegaWeight)};
}

} // namespace MA_NAMESPACE
