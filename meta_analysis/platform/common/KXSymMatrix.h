#pragma once

#include "meta_analysis/platform/common/KXBitSet.h"

#include <cstddef>
#include <vector>

/// Symmetric matrix, and weighted least squares by sweeping a cross-product matrix.
///
/// Regression of a dependent y on predictors x (p values) with weights w: a matrix of size p + 1, the
/// dependent last,
///   1. `UpdateXX` with (x, y) and w for every row: A = [X'WX  X'Wy; y'WX  y'Wy];
///   2. `SweepOnMany` on the predictors, once; those that the earlier ones determine remain unswept;
///   3. `GetRegCoeffs` gives b, `GetSweptInverse` gives M, a generalized inverse of X'WX, and the last
///      diagonal element is the weighted residual sum of squares.
/// The scale of a column plays no part in which columns are swept. The relative error of the results is of
/// the order of the double epsilon times the condition number of X'WX scaled to a unit diagonal.
///
/// An index outside the matrix is ignored and reads as missing. Constructor, Resize and the operations
/// that return a matrix or fill a container throw std::bad_alloc when memory runs out.
class KXSymMatrix
{
public:
    /// A matrix of zeros.
    explicit KXSymMatrix(std::size_t size = 0);

    /// Makes this a matrix of zeros of another size.
    void Resize(std::size_t size);

    std::size_t Size() const noexcept { return size_; }

    double Get(std::size_t row, std::size_t col) const noexcept;

    /// Stores the element and its mirror image.
    void Set(std::size_t row, std::size_t col, double value) noexcept;

    /// Adds w x x'. False, and nothing changed, when x has another length than the matrix.
    /// Cost: (p + 1)(p + 2) / 2 multiplications and additions, no allocation.
    bool UpdateXX(const std::vector<double>& x, double w) noexcept;

    /// Adds w x x' for `count` rows of Size() values that lie one after the other at `rows`, with a weight
    /// each: sums of 256 rows one by one, so that the rounding error of many rows stays small. Throws
    /// std::bad_alloc when memory runs out for the sums of more than 5 columns.
    void UpdateXX(const double* rows, const double* weights, std::size_t count);

    /// Sweeps the predictors `columns` in the order given; `swept` is set to those that could be.
    ///
    /// A column is swept when its pivot, the residual sum of squares of the column on those swept before,
    /// is above `tolerance` times the column's diagonal element before any sweep, and above the rounding
    /// error of its computation. A column given twice is swept once; the dependent and positions outside
    /// the matrix are not swept. Cost: O(p²) a column.
    /// Goodnight (1979), The American Statistician 33, 149-158.
    void SweepOnMany(const std::vector<std::size_t>& columns, double tolerance, KXBitSet& swept);

    /// After SweepOnMany: the p regression coefficients, missing for columns that were not swept.
    void GetRegCoeffs(const KXBitSet& swept, std::vector<double>& coefficients) const;

    /// After SweepOnMany: M, p x p, the inverse of the swept block of X'WX, bordered with zero rows and
    /// columns for predictors not swept. So w_i x_i' M x_i is the leverage of row i, and the leverages sum
    /// to the number of swept columns.
    KXSymMatrix GetSweptInverse(const KXBitSet& swept) const;

    /// The rows and columns in `kept`, in ascending order.
    KXSymMatrix ExtractSubmatrix(const KXBitSet& kept) const;

    /// The inverse by Cholesky factorization; `inverse` may be this matrix. False, and `inverse` unchanged,
    /// when the matrix is not positive definite to working precision. Cost: O(size³).
    bool CholeskyInverse(KXSymMatrix& inverse) const;

    /// v'Sv; missing when v has another length than the matrix. No allocation.
    double QuadraticForm(const std::vector<double>& v) const noexcept;

    /// The same for `count` rows of Size() values; each begins `stride` values after the one before.
    void QuadraticForms(const double* rows, std::size_t stride, std::size_t count,
                        double* forms) const noexcept;

    /// outer * inner * outer, of the size of both; empty when the sizes differ. Cost: O(size³), two columns
    /// of workspace.
    static KXSymMatrix Sandwich(const KXSymMatrix& outer, const KXSymMatrix& inner);

private:
    double* Row(std::size_t row) noexcept { return elements_.data() + row * (row + 1) / 2; }
    const double* Row(std::size_t row) const noexcept { return elements_.data() + row * (row + 1) / 2; }
    double& Element(std::size_t row, std::size_t col) noexcept;
    double Element(std::size_t row, std::size_t col) const noexcept;

    std::size_t PredictorCount() const noexcept { return size_ == 0 ? 0 : size_ - 1; }
    void CopyColumn(std::size_t col, std::vector<double>& column) const noexcept;
    void Sweep(std::size_t pivotIndex, std::vector<double>& column) noexcept;
    void Multiply(const std::vector<double>& v, std::vector<double>& product) const noexcept;

    bool FactorizeCholesky() noexcept;
    void InvertLowerTriangle() noexcept;
    void MultiplyTransposeByLowerTriangle() noexcept;

    /// The lower triangle, row after row: an element and its mirror image are one, so that rounding cannot
    /// make them differ, and an update runs through the memory once, from start to end.
    std::vector<double> elements_;
    std::size_t size_;
};
