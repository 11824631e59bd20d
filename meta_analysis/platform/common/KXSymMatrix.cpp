#include "meta_analysis/platform/common/KXSymMatrix.h"

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/UnrolledSize.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <utility>

namespace {

std::size_t TriangleSize(std::size_t size)
{
    // More than any memory holds; beyond it the product would wrap around before the allocation fails.
    constexpr std::size_t tooLarge = std::size_t{1} << (std::numeric_limits<std::size_t>::digits / 2 - 2);
    if (size >= tooLarge)
        throw std::bad_alloc();
    return size * (size + 1) / 2;
}

/// Rows that are summed up by themselves: the rounding error of a sum of equal signs grows with the number of
/// its terms.
constexpr std::size_t rowsPerSum = 256;

/// The rounding error of a pivot, in units of epsilon times the square of its column's magnitude. Redundant
/// columns, simulated with equal and with unequal weights, reach 4 for 10 000 rows, 10 for 100 000 and 107
/// for a million.
constexpr double pivotRoundingError = 256.0 * std::numeric_limits<double>::epsilon();

/// A pivot must be a normal number, so that its reciprocal is finite. Comparisons with a NaN fail. The pivot
/// of a swept column is negative, and so below its rounding error.
bool CanSweep(double pivot, double diagonal, double magnitude, double tolerance)
{
    return std::isnormal(pivot) && pivot > tolerance * diagonal &&
           pivot > pivotRoundingError * magnitude * magnitude;
}

template <class Size>
void AddRows(Size size, const double* rows, const double* weights, std::size_t count,
             double* triangle) noexcept
{
    for (std::size_t i = 0; i < count; ++i, rows += size) {
        double* element = triangle;
        for (std::size_t r = 0; r < size; ++r) {
            const double weighted = weights[i] * rows[r];
            for (std::size_t c = 0; c <= r; ++c)
                *element++ += weighted * rows[c];
        }
    }
}

/// A triangle of zeros that nothing else can refer to; a small one can so be held in registers.
template <std::size_t size>
std::array<double, size*(size + 1) / 2> ZeroTriangle(std::integral_constant<std::size_t, size>)
{
    return {};
}
std::vector<double> ZeroTriangle(std::size_t size)
{
    return std::vector<double>(TriangleSize(size));
}

template <class Size>
double QuadraticFormOf(Size size, const double* element, const double* v) noexcept
{
    double form = 0.0;
    for (std::size_t i = 0; i < size; ++i) {
        double below = 0.0;
        for (std::size_t j = 0; j < i; ++j)
            below += *element++ * v[j];
        form += v[i] * (2.0 * below + *element++ * v[i]);
    }
    return form;
}

} // namespace

KXSymMatrix::KXSymMatrix(std::size_t size) : elements_(TriangleSize(size)), size_(size) {}

void KXSymMatrix::Resize(std::size_t size)
{
    elements_.assign(TriangleSize(size), 0.0);
    size_ = size;
}

double& KXSymMatrix::Element(std::size_t row, std::size_t col) noexcept
{
    return row >= col ? Row(row)[col] : Row(col)[row];
}

double KXSymMatrix::Element(std::size_t row, std::size_t col) const noexcept
{
    return row >= col ? Row(row)[col] : Row(col)[row];
}

double KXSymMatrix::Get(std::size_t row, std::size_t col) const noexcept
{
    return row < size_ && col < size_ ? Element(row, col) : KXMV::Missing();
}

void KXSymMatrix::Set(std::size_t row, std::size_t col, double value) noexcept
{
    if (row < size_ && col < size_)
        Element(row, col) = value;
}

bool KXSymMatrix::UpdateXX(const std::vector<double>& x, double w) noexcept
{
    if (x.size() != size_)
        return false;
    AddRows(size_, x.data(), &w, 1, elements_.data());
    return true;
}

void KXSymMatrix::UpdateXX(const double* rows, const double* weights, std::size_t count)
{
    for (std::size_t first = 0; first < count; first += rowsPerSum) {
        WithUnrolledSize(size_, [&](auto size) {
            auto sums = ZeroTriangle(size);
            AddRows(size, rows + first * size_, weights + first, std::min(rowsPerSum, count - first),
                    sums.data());
            for (std::size_t i = 0; i < sums.size(); ++i)
                elements_[i] += sums[i];
        });
    }
}

// The tolerance alone would let a redundant column pass whose values are small beside those it is computed
// from: years since 1964, after an intercept and the years themselves, have a residual of pure rounding
// error, yet up to 1e-10 of their own sum of squares. So each column carries the magnitude m of the numbers
// that it is computed from. If the error e_ij of a_ij is in proportion to m_i m_j, then after a sweep it is,
// to first order and with b_i = a_ik / a_kk,
//     e_ij - b_i e_jk - b_j e_ik + b_i b_j e_kk,   in proportion to (m_i + |b_i| m_k) (m_j + |b_j| m_k).
void KXSymMatrix::SweepOnMany(const std::vector<std::size_t>& columns, double tolerance, KXBitSet& swept)
{
    swept = KXBitSet(PredictorCount());
    std::vector<double> diagonal(size_);
    std::vector<double> magnitude(size_);
    for (std::size_t i = 0; i < size_; ++i) {
        diagonal[i] = Element(i, i);
        magnitude[i] = std::sqrt(diagonal[i]);
    }
    std::vector<double> workspace(size_);
    for (const std::size_t k : columns) {
        if (k >= PredictorCount() || !CanSweep(Element(k, k), diagonal[k], magnitude[k], tolerance))
            continue;
        Sweep(k, workspace);
        swept.Set(k);
        for (std::size_t i = 0; i < size_; ++i) {
            if (i != k)
                magnitude[i] += std::fabs(Element(i, k)) * magnitude[k];
        }
    }
}

// The sweep in its symmetric form: with d the pivot a_kk,
//     a_ij - a_ik a_jk / d,   a_ik / d in the pivot's row and column,   -1/d for the pivot.
// Once a set S is swept, the block of S is minus its inverse, and the coefficients of a column on S are
// found in that column's row.
void KXSymMatrix::Sweep(std::size_t pivotIndex, std::vector<double>& column) noexcept
{
    CopyColumn(pivotIndex, column);
    const double pivot = column[pivotIndex];
    for (std::size_t i = 0; i < size_; ++i) {
        if (i == pivotIndex)
            continue;
        const double coefficient = column[i] / pivot;
        double* row = Row(i);
        for (std::size_t j = 0; j <= i; ++j)
            row[j] -= coefficient * column[j];
        Element(i, pivotIndex) = coefficient;
    }
    Element(pivotIndex, pivotIndex) = -1.0 / pivot;
}

void KXSymMatrix::CopyColumn(std::size_t col, std::vector<double>& column) const noexcept
{
    for (std::size_t i = 0; i < size_; ++i)
        column[i] = Element(i, col);
}

void KXSymMatrix::GetRegCoeffs(const KXBitSet& swept, std::vector<double>& coefficients) const
{
    const std::size_t dependent = PredictorCount();
    coefficients.assign(dependent, KXMV::Missing());
    for (std::size_t j = 0; j < dependent; ++j) {
        if (swept.Test(j))
            coefficients[j] = Element(dependent, j);
    }
}

KXSymMatrix KXSymMatrix::GetSweptInverse(const KXBitSet& swept) const
{
    KXSymMatrix inverse(PredictorCount());
    for (std::size_t i = 0; i < inverse.size_; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            if (swept.Test(i) && swept.Test(j))
                inverse.Element(i, j) = -Element(i, j);
        }
    }
    return inverse;
}

KXSymMatrix KXSymMatrix::ExtractSubmatrix(const KXBitSet& kept) const
{
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < size_; ++i) {
        if (kept.Test(i))
            indices.push_back(i);
    }
    KXSymMatrix submatrix(indices.size());
    for (std::size_t i = 0; i < indices.size(); ++i) {
        for (std::size_t j = 0; j <= i; ++j)
            submatrix.Element(i, j) = Element(indices[i], indices[j]);
    }
    return submatrix;
}

bool KXSymMatrix::CholeskyInverse(KXSymMatrix& inverse) const
{
    KXSymMatrix work(*this);
    if (!work.FactorizeCholesky())
        return false;
    work.InvertLowerTriangle();
    work.MultiplyTransposeByLowerTriangle();
    inverse = std::move(work);
    return true;
}

/// Replaces A by L with A = LL'. A pivot within size * epsilon of the diagonal element it is computed from
/// is all rounding error, and no evidence of a positive definite matrix.
bool KXSymMatrix::FactorizeCholesky() noexcept
{
    const double precision = static_cast<double>(size_) * std::numeric_limits<double>::epsilon();
    for (std::size_t i = 0; i < size_; ++i) {
        double* row = Row(i);
        double pivot = row[i];
        for (std::size_t j = 0; j < i; ++j) {
            const double* above = Row(j);
            double sum = row[j];
            for (std::size_t k = 0; k < j; ++k)
                sum -= row[k] * above[k];
            row[j] = sum / above[j];
            pivot -= row[j] * row[j];
        }
        if (!(std::isnormal(pivot) && pivot > precision * row[i]))
            return false;
        row[i] = std::sqrt(pivot);
    }
    return true;
}

/// Replaces L by its inverse. Row i needs, of itself, only elements to the right of the one it computes.
void KXSymMatrix::InvertLowerTriangle() noexcept
{
    for (std::size_t i = 0; i < size_; ++i) {
        double* row = Row(i);
        for (std::size_t j = 0; j < i; ++j) {
            double sum = 0.0;
            for (std::size_t k = j; k < i; ++k)
                sum += row[k] * Row(k)[j];
            row[j] = -sum / row[i];
        }
        row[i] = 1.0 / row[i];
    }
}

/// Replaces L by L'L. An element needs its own row only at and to the right of itself, and rows below.
void KXSymMatrix::MultiplyTransposeByLowerTriangle() noexcept
{
    for (std::size_t i = 0; i < size_; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = 0.0;
            for (std::size_t k = i; k < size_; ++k)
                sum += Row(k)[i] * Row(k)[j];
            Row(i)[j] = sum;
        }
    }
}

double KXSymMatrix::QuadraticForm(const std::vector<double>& v) const noexcept
{
    return v.size() == size_ ? QuadraticFormOf(size_, elements_.data(), v.data()) : KXMV::Missing();
}

void KXSymMatrix::QuadraticForms(const double* rows, std::size_t stride, std::size_t count,
                                 double* forms) const noexcept
{
    WithUnrolledSize(size_, [&](auto size) {
        for (std::size_t i = 0; i < count; ++i)
            forms[i] = QuadraticFormOf(size, elements_.data(), rows + i * stride);
    });
}

void KXSymMatrix::Multiply(const std::vector<double>& v, std::vector<double>& product) const noexcept
{
    for (std::size_t i = 0; i < size_; ++i) {
        const double* row = Row(i);
        double sum = row[i] * v[i];
        for (std::size_t j = 0; j < i; ++j) {
            sum += row[j] * v[j];
            product[j] += row[j] * v[i];
        }
        product[i] = sum;
    }
}

KXSymMatrix KXSymMatrix::Sandwich(const KXSymMatrix& outer, const KXSymMatrix& inner)
{
    if (outer.size_ != inner.size_)
        return KXSymMatrix();
    KXSymMatrix result(outer.size_);
    std::vector<double> column(outer.size_);
    std::vector<double> product(outer.size_);
    for (std::size_t j = 0; j < outer.size_; ++j) {
        outer.CopyColumn(j, column);
        inner.Multiply(column, product);
        outer.Multiply(product, column);
        for (std::size_t i = j; i < outer.size_; ++i)
            result.Element(i, j) = column[i];
    }
    return result;
}
