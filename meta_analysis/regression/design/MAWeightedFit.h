#pragma once

#include "meta_analysis/platform/common/KXSymMatrix.h"
#include "meta_analysis/platform/common/UnrolledSize.h"
#include "meta_analysis/regression/design/MABasicRows.h"
#include "meta_analysis/regression/design/MAOrthonormalColumns.h"
#include "meta_analysis/regression/design/MATriangle.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Sums over the rows of a weighted fit, with P = W - WZ(Z'WZ)⁻¹Z'W.
struct MAProjectionSums
{
    double count = 0.0;          ///< of rows
    double weights = 0.0;        ///< tr W
    double squaredWeights = 0.0; ///< tr WW
    double yPy = 0.0;
    double yPPy = 0.0;
    double yPPPy = 0.0; ///< only where asked for, as the traces
    double traceP = 0.0;
    double tracePP = 0.0;
};

/// A stretch of a fit's rows, one entry each.
struct MAFittedRows
{
    std::size_t first; ///< number of its first row
    std::size_t count;
    const double* residuals;
    const double* leverageComplements; ///< 1 - h; null unless asked for
};

/// Weighted least squares of the residuals of a design's dependent on its orthonormal columns Z.
///
/// The rows u of Z are fitted by S = Σ w uu', whose condition is at most the ratio of the weights. Where that
/// costs digits, the rows are expressed by p basic rows, the ones with the largest weights (the heaviest,
/// next the one with the heaviest part orthogonal to it, and so on): these become unit vectors, u = Z_B'⁻¹z,
/// and the dependent is counted from the fit through them, y - u'y_B. With B the weights of the basic rows
/// and G the sum over the others, S = B + G, and a, the fitted values at the basic rows, is small. Scaled to
/// a unit diagonal S is well conditioned however the weights differ (Peters and Wilkinson 1970, The Computer
/// Journal 13, 309-316), and the quantities that cancel where a row dominates have forms without differences:
///
///     1 - h_j = (GM)_jj        P_BB = GMB        P_NB = -W U M B        (M = S⁻¹, N the other rows)
///
/// The leverage of every other row is at most about p / (p + 1).
class MAWeightedFit
{
public:
    /// Rows whose sums are formed before they are added to those of the rows before.
    static constexpr std::size_t stretch = 256;
    /// A pivot or a difference may lose six of 53 bits before the rows take other coordinates.
    static constexpr double smallestShare = 1.0 / 64.0;

    explicit MAWeightedFit(const MAOrthonormalColumns& columns) : columns_(&columns) {}

    /// Fits with a weight >= 0 for each row, by basic rows where Z'WZ loses digits. The weights must outlive
    /// the use of the fit. `withSquares` also forms Σ w² uu', for the traces.
    void Fit(const std::vector<double>& weights, bool withSquares);
    /// Fits by basic rows in any case.
    void FitAboutBasicRows(const std::vector<double>& weights, bool withSquares);

    /// Fits, and sums over the rows. Each sum has nearly all its digits for any weights. The traces cost
    /// O(p²) a row.
    MAProjectionSums FitAndSum(const std::vector<double>& weights, bool withTraces, bool withCubic);

    /// 1 - h of every row, with all its digits; fits again by basic rows where a complement is small.
    void LeverageComplements(std::vector<double>& complements);
    /// (PP)_ii of a row, after a fit with squares.
    double SquaredProjection(std::size_t row) const;

    /// Calls `visit(rows)` for each stretch of the rows in turn. A stretch fits into the fastest cache.
    template <class Visit>
    void VisitRows(bool withLeverages, Visit visit) const;

    /// The coefficients g of Z, and the upper triangle R with R'R = Z'WZ.
    void Coordinates(std::vector<double>& coordinates) const;
    void Factor(MASquareMatrix& factor) const;
    double LogDeterminant() const; ///< of Z'WZ

private:
    struct RowSums;

    bool HasBasicRows() const { return !basic_.rows.empty(); }
    bool IsExact(const MAProjectionSums& sums, bool withTraces) const;
    void Solve(bool withSquares);
    void FormCrossProducts(bool withSquares);
    void Factorize();
    void Invert();
    void FormHat();
    double HatSquare(std::size_t j) const;
    MAProjectionSums Sums(bool withTraces, bool withCubic);
    void AddResiduals(const MAFittedRows& rows, MAProjectionSums& total) const;
    void AddProducts(const MAFittedRows& rows, RowSums& total) const;
    void AddLeverages(const MAFittedRows& rows, MAProjectionSums& total) const;
    double CubicForm(const RowSums& sums) const;
    void AddBasicRows(MAProjectionSums& sums) const;
    void AddTraces(MAProjectionSums& sums) const;
    void ComputeResiduals(std::size_t first, std::size_t count, double* residuals) const;
    void ComputeComplements(std::size_t first, std::size_t count, double* complements) const;
    double BasicComplement(std::size_t j, std::size_t l) const;

    const double* Row(std::size_t i) const
    {
        return HasBasicRows() ? basic_.cells.data() + i * (Rank() + 1) : columns_->Row(i);
    }
    const double* Weights(std::size_t i) const
    {
        return (HasBasicRows() ? basic_.otherWeights : *given_).data() + i;
    }
    std::size_t Rank() const { return columns_->Rank(); }

    const MAOrthonormalColumns* columns_;
    const std::vector<double>* given_ = nullptr; ///< the weights
    MABasicRows basic_;                          ///< empty where the fit is about the columns

    KXSymMatrix crossProducts_;   ///< G (or S) with the dependent
    KXSymMatrix squaredProducts_; ///< with squared weights
    KXSymMatrix inverse_;         ///< M
    MASquareMatrix hat_;          ///< MJ with J = U'W²U
    MASquareMatrix factor_;       ///< upper triangle of S
    double smallestPivot_ = 1.0;  ///< as a share of its diagonal element
    std::vector<double> fitted_;  ///< a, coefficients of the coordinates

    // Memory that fits share.
    std::vector<double> column_;   ///< of M
    std::vector<double> shift_;    ///< of `RowSums`
    std::vector<double> products_; ///< of `RowSums`
};

template <class Visit>
void MAWeightedFit::VisitRows(bool withLeverages, Visit visit) const
{
    std::array<double, stretch> residuals;
    std::array<double, stretch> complements;
    for (std::size_t first = 0; first < given_->size(); first += stretch) {
        const std::size_t count = std::min(stretch, given_->size() - first);
        ComputeResiduals(first, count, residuals.data());
        if (withLeverages)
            ComputeComplements(first, count, complements.data());
        visit(MAFittedRows{first, count, residuals.data(), withLeverages ? complements.data() : nullptr});
    }
}

} // namespace MA_NAMESPACE
