#include "meta_analysis/regression/MARegInfluence.h"

#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/pooling/MADeletionCurve.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/regression/MAResidualTau2.h"
#include "meta_analysis/regression/design/MAOrthonormalColumns.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/regression/design/MAWeightedFit.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>
#include <utility>
#include <vector>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// Without a row of smaller leverage no column becomes redundant: each keeps this share of its squares.
constexpr double sureComplement = 1.0 / 64.0;

/// A fit on the orthonormal columns.
struct ColumnFit
{
    Values coordinates;
    MASquareMatrix factor; ///< upper triangle R with R'R = Z'WZ
    double residualSum = 0.0;
};

ColumnFit ColumnFitOf(const MAWeightedFit& fit, const Values& weights)
{
    ColumnFit result;
    fit.Coordinates(result.coordinates);
    fit.Factor(result.factor);
    fit.VisitRows(false, [&](const MAFittedRows& rows) {
        for (std::size_t i = 0; i < rows.count; ++i)
            result.residualSum += weights[rows.first + i] * Square(rows.residuals[i]);
    });
    return result;
}

ColumnFit FitColumns(const MAOrthonormalColumns& columns, const Values& weights)
{
    MAWeightedFit fit(columns);
    fit.Fit(weights, false);
    return ColumnFitOf(fit, weights);
}

Values WeightsAt(const Values& variances, double tau2)
{
    Values weights;
    weights.reserve(variances.size());
    for (const double variance : variances)
        weights.push_back(1.0 / (variance + tau2));
    return weights;
}

/// |R'⁻¹d|², the variance of d'g.
double VarianceOf(Values direction, const MASquareMatrix& factor)
{
    SolveTransposed(factor, direction.data());
    return Dot(direction.data(), direction.data(), direction.size());
}

/// |Rx|², x'Z'WZx.
double SquareIn(const Values& x, const MASquareMatrix& factor)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        double element = 0.0;
        for (std::size_t j = i; j < x.size(); ++j)
            element += factor(i, j) * x[j];
        sum += Square(element);
    }
    return sum;
}

/// det (Z'W'Z)⁻¹ over det (Z'WZ)⁻¹, from the triangles.
double DeterminantRatio(const MASquareMatrix& deleted, const MASquareMatrix& all)
{
    double ratio = 1.0;
    for (std::size_t j = 0; j < all.Size(); ++j)
        ratio *= Square(all(j, j) / deleted(j, j));
    return ratio;
}

/// The fit of all rows.
struct WholeFit
{
    Values weights;
    double weightSum = 0.0;
    ColumnFit columns;
    Values residuals;
    Values complements; ///< 1 - h
};

WholeFit FitAll(const MAOrthonormalColumns& columns, Values weights)
{
    WholeFit whole;
    whole.weights = std::move(weights);
    for (const double weight : whole.weights)
        whole.weightSum += weight;
    MAWeightedFit fit(columns);
    fit.Fit(whole.weights, false);
    whole.columns = ColumnFitOf(fit, whole.weights);
    fit.VisitRows(false, [&](const MAFittedRows& rows) {
        whole.residuals.insert(whole.residuals.end(), rows.residuals, rows.residuals + rows.count);
    });
    fit.LeverageComplements(whole.complements);
    return whole;
}

/// With the residuals of the whole fit as dependent: what a deletion then fits is the change of the fit.
MADeletionRows RowsOf(const MAOrthonormalColumns& columns, const Values& variances, const Values& residuals)
{
    MADeletionRows rows;
    rows.rank = columns.Rank();
    rows.variances = variances;
    rows.cells.reserve(rows.Count() * rows.Width());
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        rows.cells.insert(rows.cells.end(), columns.Row(i), columns.Row(i) + rows.rank);
        rows.cells.insert(rows.cells.end(), {residuals[i], 1.0});
    }
    return rows;
}

/// The rows of a design, of which one is deleted at a time.
class Deletions
{
public:
    Deletions(const MADesignMatrix& design, bool isRandom, double tau2);

    /// What needs the fit of all rows alone.
    MAStudyInfluence InWholeFit(std::size_t row) const;
    bool HasModelWithout(std::size_t row) const;
    /// The model without the row is there. An error is that of its tau².
    KXStatus Delete(std::size_t row, MAStudyInfluence& influence);

private:
    double Leverage(std::size_t row) const;
    MATau2Estimate Tau2Without(std::size_t row);
    ColumnFit FitWithout(std::size_t row, double tau2);
    MASquareMatrix FactorOfAll(double tau2);
    Values Dfbetas(const Values& change, double tau2);
    Values Coordinates(std::size_t row) const
    {
        return {columns_.Row(row), columns_.Row(row) + columns_.Rank()};
    }

    const MADesignMatrix& design_;
    const MAOrthonormalColumns& columns_;
    const Values& variances_;
    bool isRandom_;
    MAConst::TAU2ESTIMATOR estimator_;
    double tau2_;
    WholeFit whole_;
    Values unweightedComplements_;
    MADeletionCurve curve_;
};

Deletions::Deletions(const MADesignMatrix& design, bool isRandom, double tau2)
    : design_(design),
      columns_(design.Columns()),
      variances_(design.Rows().variances),
      isRandom_(isRandom),
      estimator_(EstimatorOf(design.GetSettings())),
      tau2_(tau2),
      whole_(FitAll(columns_, WeightsAt(variances_, tau2))),
      unweightedComplements_(FitAll(columns_, Values(variances_.size(), 1.0)).complements),
      curve_(RowsOf(columns_, variances_, whole_.residuals), {tau2}, LikelihoodOf(estimator_))
{}

MAStudyInfluence Deletions::InWholeFit(std::size_t row) const
{
    MAStudyInfluence influence;
    influence.hat = Leverage(row);
    influence.weight = 100.0 * whole_.weights[row] / whole_.weightSum;
    influence.baujatX = Square(whole_.residuals[row]) * whole_.weights[row];
    influence.dfbetas.assign(columns_.NonRedundant().Size(), KXMV::Missing());
    return influence;
}

/// From its complement where that is small, and where the leverage itself is small as it is: a difference
/// from 1 has no digit of it.
double Deletions::Leverage(std::size_t row) const
{
    const double leverage = whole_.weights[row] * VarianceOf(Coordinates(row), whole_.columns.factor);
    return leverage < 0.5 ? leverage : 1.0 - whole_.complements[row];
}

bool Deletions::HasModelWithout(std::size_t row) const
{
    if (variances_.size() < columns_.Rank() + 2)
        return false;
    return unweightedComplements_[row] > sureComplement ||
           design_.Without(row)->Columns().Rank() == columns_.Rank();
}

KXStatus Deletions::Delete(std::size_t row, MAStudyInfluence& influence)
{
    const MATau2Estimate tau2 = Tau2Without(row);
    if (tau2.status.IsError())
        return tau2.status;
    const ColumnFit fit = FitWithout(row, tau2.tau2);
    const Values place = Coordinates(row);
    const double fitChange = -Dot(place.data(), fit.coordinates.data(), place.size());
    SetInfluence({whole_.residuals[row], variances_[row], 0.0, fitChange, VarianceOf(place, fit.factor),
                  tau2_, tau2.tau2, SquareIn(fit.coordinates, whole_.columns.factor),
                  DeterminantRatio(fit.factor, whole_.columns.factor)},
                 influence);
    influence.qDeleted = FitWithout(row, 0.0).residualSum;
    influence.dfbetas = Dfbetas(fit.coordinates, tau2.tau2);
    if (!isRandom_)
        influence.tau2Deleted = KXMV::Missing();
    return KXStatus();
}

/// The search starts from the tau² of all rows.
MATau2Estimate Deletions::Tau2Without(std::size_t row)
{
    constexpr MATau2Estimate none = {KXStatus(), 0.0, MAConst::TAU2_CLOSED_FORM, 0};
    if (!isRandom_)
        return none;
    if (IsIterative(estimator_) && design_.GetSettings().GetTau2Search() == MAConst::TAU2_SEARCH_GLOBAL) {
        curve_.Delete(row);
        const MATau2Estimate found =
            EstimateOf(SolveTau2(curve_, estimator_, tau2_ / curve_.Unit()), curve_.Unit());
        if (curve_.IsExact() && found.convergence == MAConst::TAU2_GLOBAL_OPTIMUM)
            return found;
    }
    return EstimateResidualTau2(*design_.Without(row));
}

/// The fit of the others, its coordinates less those of the whole fit.
ColumnFit Deletions::FitWithout(std::size_t row, double tau2)
{
    curve_.Delete(row);
    const MADeletionFit shared = curve_.FitAt(tau2);
    if (shared.isExact)
        return {shared.fitted, shared.factor, shared.residualSum};
    Values weights = WeightsAt(variances_, tau2);
    weights[row] = 0.0;
    ColumnFit fit = FitColumns(columns_, weights);
    for (std::size_t j = 0; j < columns_.Rank(); ++j)
        fit.coordinates[j] -= whole_.columns.coordinates[j];
    return fit;
}

MASquareMatrix Deletions::FactorOfAll(double tau2)
{
    const MADeletionFit shared = curve_.FitOfAllAt(tau2);
    return shared.isExact ? shared.factor : FitColumns(columns_, WeightsAt(variances_, tau2)).factor;
}

/// The change of each coefficient over the standard error that it has in all studies at this tau² (Belsley,
/// Kuh and Welsch 1980, Regression Diagnostics, with its residual variance likewise of the others).
Values Deletions::Dfbetas(const Values& change, double tau2)
{
    const MASquareMatrix factor = FactorOfAll(tau2);
    Values dfbetas(columns_.NonRedundant().Size(), KXMV::Missing());
    Values direction;
    for (std::size_t j = 0; j < columns_.Rank(); ++j) {
        columns_.DirectionOfCoefficient(j, direction);
        const double moved = -Dot(direction.data(), change.data(), change.size());
        const double ratio = moved / std::sqrt(VarianceOf(direction, factor));
        if (std::isfinite(ratio))
            dfbetas[columns_.Kept()[j]] = ratio;
    }
    return dfbetas;
}

} // namespace

MARegInfluence MeasureInfluence(const MADesignMatrix& design, bool isRandom, double tau2)
{
    MARegInfluence result;
    const std::size_t count = design.Rows().Count();
    if (count < 2 || design.Columns().Rank() == 0)
        return result;
    const MARegSettings& settings = design.GetSettings();
    MAProgress progress(settings, settings.GetIterProgressListener());
    Deletions deletions(design, isRandom, tau2);
    for (std::size_t i = 0; i < count; ++i) {
        MAStudyInfluence influence = deletions.InWholeFit(i);
        const KXStatus deleted = deletions.HasModelWithout(i) ? deletions.Delete(i, influence)
                                                              : KXStatus(MAStatusCode::TOO_FEW_ROWS);
        if (!progress.Step() || deleted.GetCode() == MAStatusCode::ITERATOR_FAILED)
            return {KXStatus(MAStatusCode::ITERATOR_FAILED), {}};
        result.table.isComplete = result.table.isComplete && !deleted.IsError();
        result.table.studies.push_back(std::move(influence));
    }
    ApplyInfluenceRules(count, design.Columns().Rank(), result.table);
    return result;
}

} // namespace MA_NAMESPACE
