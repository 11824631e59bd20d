#pragma once

#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

namespace MA_NAMESPACE {

/// Square matrix of the few dimensions of a regression, row after row.
class MASquareMatrix
{
public:
    explicit MASquareMatrix(std::size_t size = 0) : size_(size), elements_(size * size) {}

    /// Makes this a matrix of zeros of another size, in its memory where that suffices.
    void Resize(std::size_t size)
    {
        size_ = size;
        elements_.assign(size * size, 0.0);
    }

    std::size_t Size() const { return size_; }
    double& operator()(std::size_t row, std::size_t col) { return elements_[row * size_ + col]; }
    double operator()(std::size_t row, std::size_t col) const { return elements_[row * size_ + col]; }
    const double* Row(std::size_t row) const { return elements_.data() + row * size_; }

private:
    std::size_t size_;
    std::vector<double> elements_;
};

inline double Dot(const double* left, const double* right, std::size_t count)
{
    return std::inner_product(left, left + count, right, 0.0);
}

/// Solves R'x = b in place for an upper triangle R.
inline void SolveTransposed(const MASquareMatrix& upper, double* x)
{
    for (std::size_t i = 0; i < upper.Size(); ++i) {
        for (std::size_t j = 0; j < i; ++j)
            x[i] -= upper(j, i) * x[j];
        x[i] /= upper(i, i);
    }
}

/// Solves Rx = b in place for an upper triangle R.
inline void SolveUpper(const MASquareMatrix& upper, double* x)
{
    for (std::size_t i = upper.Size(); i-- > 0;) {
        for (std::size_t j = i + 1; j < upper.Size(); ++j)
            x[i] -= upper(i, j) * x[j];
        x[i] /= upper(i, i);
    }
}

MASquareMatrix UnitMatrix(std::size_t size);

/// left right.
MASquareMatrix Product(const MASquareMatrix& left, const MASquareMatrix& right);

MASquareMatrix Transposed(const MASquareMatrix& matrix);

/// The upper triangle R of a positive definite a = R'R, by Cholesky's factorization.
MASquareMatrix CholeskyFactor(const MASquareMatrix& a);

/// The upper triangle R of a = QR with orthonormal Q.
MASquareMatrix TriangularFactor(MASquareMatrix a);

} // namespace MA_NAMESPACE
