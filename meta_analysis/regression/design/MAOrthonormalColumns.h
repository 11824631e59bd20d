#pragma once

#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/regression/design/MATriangle.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

struct MADesignRows;

/// The orthonormal columns of a design, computed once; all fits of the design work on them.
///
/// X = ZR for the columns that are not redundant, in their order, so that x'b = z'g for b = R⁻¹g. Every
/// column is first divided by a power of two and, beside an intercept, counted from its mean weighted by the
/// omega weights: exact for values within a factor of two of the mean, so that a calendar year loses no
/// digit, and the heavier a study, the nearer it is to the origin. The columns beside the intercept are then
/// made orthonormal about their unweighted means, by Gram-Schmidt applied twice where rounding requires it
/// (Giraud, Langou, Rozložník and van den Eshof 2005, Numerische Mathematik 101, 87-100), but keep the
/// origin, so that det Z'Z = 1. The dependent is treated like a column, and a fit is given its residuals.
/// That changes the g of a fit by a constant and its residuals not at all.
///
/// A column is redundant when those before it leave no more than `tolerance` of its sum of squares (beside an
/// intercept: of that about its mean), or no more than the rounding of its values. The rule does not depend
/// on weights, so that all fits of a design agree about the redundant columns.
class MAOrthonormalColumns
{
public:
    /// Computes the columns of other rows, in the memory of those before where that suffices. Cost: O(k p²),
    /// with one copy of the rows as workspace, which is kept.
    void Assign(const MADesignRows& rows, bool hasIntercept, double tolerance);
    void ReleaseWorkspace();

    std::size_t RowCount() const { return rowCount_; }
    /// Number of columns that are not redundant.
    std::size_t Rank() const { return kept_.size(); }
    const KXBitSet& NonRedundant() const { return nonRedundant_; }
    /// The positions of the columns that are not redundant.
    const std::vector<std::size_t>& Kept() const { return kept_; }

    /// Rank() coordinates z of a row, then the residual of its dependent.
    const double* Row(std::size_t i) const { return cells_.data() + i * (Rank() + 1); }
    /// Coordinates z of any row of predictors.
    std::vector<double> Coordinates(const double* predictors) const;

    /// Constants to be added to the g of a fit of the residuals, and to its fitted values.
    const std::vector<double>& UnweightedCoordinates() const { return unweighted_; }
    double DependentCentre() const { return dependentCentre_; }
    /// Residual sum of squares of the unweighted fit.
    double ResidualSum() const { return residualSum_; }

    /// d with b_j = d'g (plus the dependent's centre for an intercept) for the kept column `index`.
    void DirectionOfCoefficient(std::size_t index, std::vector<double>& direction) const;
    /// d with l'b = d'g for weights l of all columns, of which those of redundant columns do not count; with
    /// an intercept plus its weight times the dependent's centre.
    std::vector<double> DirectionOf(const std::vector<double>& weights) const;
    /// Whether the values of the redundant columns are those that the other columns determine in all rows, so
    /// that the fitted value does not depend on which columns count as redundant. It is judged with the
    /// tolerance by which they are redundant.
    bool Determines(const double* predictors) const;

private:
    /// A column, counted from its centre when an intercept stands before it.
    struct Column
    {
        std::vector<double> values;
        double scale = 1.0;
        double centre = 0.0;
        double origin = 0.0; ///< unweighted mean, from which the sums of squares are taken

        double Squares() const;
    };

    /// A redundant column as a combination of Z, after division by its scale.
    struct RedundantColumn
    {
        std::size_t position;
        double scale;
        double centre; ///< what the combination is counted from
        double spread; ///< root mean square about the mean, or about 0
        std::vector<double> shares;
    };

    /// Whether the next column has an intercept before it.
    bool HasIntercept() const { return hasIntercept_ && Rank() > 0; }
    void Restart(const MADesignRows& rows, bool hasIntercept, double tolerance);
    void ReadColumn(const MADesignRows& rows, std::size_t position);
    void Centre(const std::vector<double>& weights);
    void AddColumn(const std::vector<double>& weights, std::size_t position, double tolerance);
    void KeepColumn(std::size_t position, double left);
    double Orthogonalize(double squares, double* shares);
    void AddDependent(const std::vector<double>& weights);
    void StoreRows(const std::vector<double>& residuals);
    void Solve(std::vector<double>& direction) const;

    std::size_t rowCount_ = 0;
    bool hasIntercept_ = false;
    KXBitSet nonRedundant_;
    std::vector<std::size_t> kept_;
    std::vector<RedundantColumn> redundant_;
    double margin_ = 0.0; ///< for the value of a redundant column, relative to its distance from the centre
    std::vector<double> scales_;            ///< of the kept columns: powers of two
    std::vector<double> centres_;           ///< of the kept columns after scaling
    std::vector<double> origins_;           ///< unweighted means of Z, about which it is orthonormal
    Column column_;                         ///< the one that is added, or the dependent
    std::vector<double> shares_;            ///< of the columns before it in that one
    std::vector<std::vector<double>> work_; ///< Z column by column, while it is built
    std::vector<std::vector<double>> r_;    ///< R column by column, the diagonal element last
    MASquareMatrix upper_;                  ///< R
    std::vector<double> cells_;
    std::vector<double> unweighted_;
    double dependentCentre_ = 0.0;
    double residualSum_ = 0.0;
};

} // namespace MA_NAMESPACE
