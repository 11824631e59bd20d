#include "meta_analysis/regression/design/MATriangle.h"

#include <cmath>
#include <vector>

namespace MA_NAMESPACE {

MASquareMatrix UnitMatrix(std::size_t size)
{
    MASquareMatrix unit(size);
    for (std::size_t i = 0; i < size; ++i)
        unit(i, i) = 1.0;
    return unit;
}

MASquareMatrix Product(const MASquareMatrix& left, const MASquareMatrix& right)
{
    const std::size_t n = left.Size();
    MASquareMatrix product(n);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t l = 0; l < n; ++l)
                product(i, j) += left(i, l) * right(l, j);
        }
    }
    return product;
}

MASquareMatrix Transposed(const MASquareMatrix& matrix)
{
    MASquareMatrix transposed(matrix.Size());
    for (std::size_t i = 0; i < matrix.Size(); ++i) {
        for (std::size_t j = 0; j < matrix.Size(); ++j)
            transposed(j, i) = matrix(i, j);
    }
    return transposed;
}

MASquareMatrix CholeskyFactor(const MASquareMatrix& a)
{
    MASquareMatrix upper(a.Size());
    for (std::size_t j = 0; j < a.Size(); ++j) {
        for (std::size_t i = 0; i <= j; ++i) {
            double left = a(i, j);
            for (std::size_t l = 0; l < i; ++l)
                left -= upper(l, i) * upper(l, j);
            upper(i, j) = i < j ? left / upper(i, i) : std::sqrt(left);
        }
    }
    return upper;
}

/// By Householder reflections, which are stable for rows of any scale when the larger come first (Cox and
/// Higham 1998, in Numerical Analysis 1997, 57-73).
MASquareMatrix TriangularFactor(MASquareMatrix a)
{
    const std::size_t n = a.Size();
    std::vector<double> v(n);
    for (std::size_t k = 0; k + 1 < n; ++k) {
        double norm = 0.0;
        for (std::size_t i = k; i < n; ++i)
            norm = std::hypot(norm, a(i, k));
        if (norm == 0.0)
            continue;
        const double diagonal = a(k, k) > 0.0 ? -norm : norm;
        for (std::size_t i = k; i < n; ++i)
            v[i] = a(i, k) / norm;
        v[k] -= diagonal / norm;
        for (std::size_t j = k + 1; j < n; ++j) {
            double share = 0.0;
            for (std::size_t i = k; i < n; ++i)
                share += v[i] * a(i, j);
            share /= std::abs(v[k]);
            for (std::size_t i = k; i < n; ++i)
                a(i, j) -= share * v[i];
        }
        a(k, k) = diagonal;
        for (std::size_t i = k + 1; i < n; ++i)
            a(i, k) = 0.0;
    }
    return a;
}

} // namespace MA_NAMESPACE
