#include "meta_analysis/platform/common/KXDiagMatrix.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXRectMatrix.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <vector>

namespace {

/// The matrix of `rows` x `cols` with elements 1, 2, 3, ... row after row.
KXRectMatrix Counting(std::size_t rows, std::size_t cols)
{
    KXRectMatrix matrix(rows, cols);
    for (std::size_t i = 0; i < rows * cols; ++i)
        matrix.Set(i / cols, i % cols, static_cast<double>(i + 1));
    return matrix;
}

std::vector<double> ElementsOf(const KXRectMatrix& matrix)
{
    std::vector<double> elements;
    for (std::size_t i = 0; i < matrix.Rows() * matrix.Cols(); ++i)
        elements.push_back(matrix.Get(i / matrix.Cols(), i % matrix.Cols()));
    return elements;
}

} // namespace

TEST(KXRectMatrix, Products)
{
    KXRectMatrix left = Counting(2, 3);
    left.Set(0, 3, 9.0); // outside, and not the first element of the next row
    EXPECT_TRUE(KXMV::IsMissing(left.Get(0, 3)));
    using Elements = std::vector<double>;
    EXPECT_EQ(ElementsOf(left.Product(Counting(3, 2))), (Elements{22, 28, 49, 64}));
    EXPECT_EQ(ElementsOf(Counting(3, 2).Product(left)), (Elements{9, 12, 15, 19, 26, 33, 29, 40, 51}));
    EXPECT_EQ(ElementsOf(KXDiagMatrix({2, -1}).Product(left)), (Elements{2, 4, 6, -4, -5, -6}));

    EXPECT_EQ(left.Product(left).Rows(), 0u);
    EXPECT_EQ(KXDiagMatrix({1, 2, 3}).Product(left).Rows(), 0u);
    EXPECT_THROW(KXRectMatrix(std::numeric_limits<std::size_t>::max(), 2), std::bad_alloc);
}
