#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXRectMatrix.h"
#include "meta_analysis/platform/common/KXSymMatrix.h"

#include <cstddef>
#include <utility>
#include <vector>

/// Diagonal matrix D, such as the scaling of a regression's columns.
///
/// The products throw std::bad_alloc when memory runs out, and are empty when the sizes do not match.
class KXDiagMatrix
{
public:
    explicit KXDiagMatrix(std::vector<double> diagonal) noexcept : diagonal_(std::move(diagonal)) {}

    std::size_t Size() const noexcept { return diagonal_.size(); }

    /// The diagonal element at `index`; missing when there is none.
    double Get(std::size_t index) const noexcept
    {
        return index < Size() ? diagonal_[index] : KXMV::Missing();
    }

    /// D * inner * D.
    KXSymMatrix Sandwich(const KXSymMatrix& inner) const
    {
        if (inner.Size() != Size())
            return KXSymMatrix();
        KXSymMatrix scaled(Size());
        for (std::size_t i = 0; i < Size(); ++i) {
            for (std::size_t j = 0; j <= i; ++j)
                scaled.Set(i, j, diagonal_[i] * inner.Get(i, j) * diagonal_[j]);
        }
        return scaled;
    }

    /// D * right: row i of `right` times the diagonal element i.
    KXRectMatrix Product(const KXRectMatrix& right) const
    {
        if (right.Rows() != Size())
            return KXRectMatrix();
        KXRectMatrix scaled(right.Rows(), right.Cols());
        for (std::size_t i = 0; i < Size(); ++i) {
            for (std::size_t j = 0; j < right.Cols(); ++j)
                scaled.Set(i, j, diagonal_[i] * right.Get(i, j));
        }
        return scaled;
    }

private:
    std::vector<double> diagonal_;
};
