#include "meta_analysis/platform/common/KXRectMatrix.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <limits>
#include <new>

namespace {

std::size_t ElementCount(std::size_t rows, std::size_t cols)
{
    // More than any memory holds; beyond it the product would wrap around before the allocation fails.
    constexpr std::size_t tooMany = std::numeric_limits<std::size_t>::max() / (2 * sizeof(double));
    if (cols != 0 && rows >= tooMany / cols)
        throw std::bad_alloc();
    return rows * cols;
}

} // namespace

KXRectMatrix::KXRectMatrix(std::size_t rows, std::size_t cols)
    : elements_(ElementCount(rows, cols)), rows_(rows), cols_(cols)
{}

double KXRectMatrix::Get(std::size_t row, std::size_t col) const noexcept
{
    return row < rows_ && col < cols_ ? elements_[row * cols_ + col] : KXMV::Missing();
}

void KXRectMatrix::Set(std::size_t row, std::size_t col, double value) noexcept
{
    if (row < rows_ && col < cols_)
        elements_[row * cols_ + col] = value;
}

KXRectMatrix KXRectMatrix::Product(const KXRectMatrix& right) const
{
    if (cols_ != right.rows_)
        return KXRectMatrix();
    KXRectMatrix product(rows_, right.cols_);
    for (std::size_t i = 0; i < rows_; ++i) {
        double* target = product.elements_.data() + i * right.cols_;
        for (std::size_t k = 0; k < cols_; ++k) {
            const double factor = elements_[i * cols_ + k];
            const double* source = right.elements_.data() + k * right.cols_;
            for (std::size_t j = 0; j < right.cols_; ++j)
                target[j] += factor * source[j];
        }
    }
    return product;
}
