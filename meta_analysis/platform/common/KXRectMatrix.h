#pragma once

#include <cstddef>
#include <vector>

/// Rectangular matrix. An index outside it is ignored and reads as missing.
class KXRectMatrix
{
public:
    /// A matrix of zeros. Throws std::bad_alloc when memory runs out, as does Product.
    explicit KXRectMatrix(std::size_t rows = 0, std::size_t cols = 0);

    std::size_t Rows() const noexcept { return rows_; }
    std::size_t Cols() const noexcept { return cols_; }

    double Get(std::size_t row, std::size_t col) const noexcept;
    void Set(std::size_t row, std::size_t col, double value) noexcept;

    /// This matrix times `right`; 0 x 0 when `right` has not as many rows as this matrix has columns.
    KXRectMatrix Product(const KXRectMatrix& right) const;

private:
    std::vector<double> elements_; ///< row after row
    std::size_t rows_;
    std::size_t cols_;
};
