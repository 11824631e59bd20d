// Symmetric, rectangular and diagonal matrices.

#include "support/Compare.h"
#include "support/Data.h"

#include "meta_analysis/platform/common/KXDiagMatrix.h"
#include "meta_analysis/platform/common/KXMathFun.h"
#include "meta_analysis/platform/common/KXRectMatrix.h"
#include "meta_analysis/platform/common/KXSymMatrix.h"

#include <utility>

namespace {

/// The rows of the lower triangle.
KXSymMatrix Symmetric(const Rows& rows)
{
    KXSymMatrix matrix(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j)
            matrix.Set(i, j, rows[i][j]);
    }
    return matrix;
}

/// The matrix of `rows` x `cols` with elements 1, 2, 3, ... row after row.
KXRectMatrix Counting(std::size_t rows, std::size_t cols)
{
    KXRectMatrix matrix(rows, cols);
    for (std::size_t i = 0; i < rows * cols; ++i)
        matrix.Set(i / cols, i % cols, static_cast<double>(i + 1));
    return matrix;
}

template <class Matrix>
Rows ElementsOf(const Matrix& matrix, std::size_t rowCount, std::size_t columnCount)
{
    Rows rows(rowCount, Row(columnCount));
    for (std::size_t i = 0; i < rowCount; ++i) {
        for (std::size_t j = 0; j < columnCount; ++j)
            rows[i][j] = matrix.Get(i, j);
    }
    return rows;
}

Rows RowsOf(const KXSymMatrix& matrix)
{
    return ElementsOf(matrix, matrix.Size(), matrix.Size());
}

} // namespace

/// Some sizes have loops of their own, which must add up in the same order.
TEST(KXSymMatrix, ManyRowsAtOnceGiveTheBitsOfOneByOne)
{
    constexpr std::size_t count = 9;
    const std::vector<double> weights = {1.0 / 3, 1.0 / 7, 0.3, 1.7, 0.1, 2.9, 1.0 / 9, 0.7, 1.1};
    for (std::size_t size = 0; size <= 8; ++size) {
        SCOPED_TRACE(size);
        std::vector<double> block(count * size);
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = std::sin(static_cast<double>(i));
        const auto row = [&](std::size_t start) { return Row(&block[start], &block[start] + size); };
        KXSymMatrix matrix(size);
        KXSymMatrix expected(size);
        matrix.UpdateXX(block.data(), weights.data(), count);
        for (std::size_t i = 0; size > 0 && i < count; ++i)
            expected.UpdateXX(row(i * size), weights[i]);
        EXPECT_EQ(RowsOf(matrix), RowsOf(expected));

        std::vector<double> forms(count - 1, missing); // of values one further on than each row's
        matrix.QuadraticForms(block.data() + 1, size, size == 0 ? 0 : forms.size(), forms.data());
        for (std::size_t i = 0; size > 0 && i < forms.size(); ++i)
            EXPECT_EQ(forms[i], matrix.QuadraticForm(row(1 + i * size)));
    }
}

/// With the rows one after another in one sum, the rounding error of the third column's pivot passes for
/// more.
TEST(KXSymMatrix, AColumnThatOthersDetermineIsFoundInManyRows)
{
    constexpr std::size_t count = 100000;
    const std::vector<double> weights(count, 1.0 / 0.11);
    std::vector<double> rows;
    for (std::size_t i = 0; i < count; ++i) {
        const double year = 1948.0 + static_cast<double>(i * 7 % 33);
        rows.insert(rows.end(), {1.0, year, year - 1964.0, 0.0});
    }
    KXSymMatrix matrix(4);
    matrix.UpdateXX(rows.data(), weights.data(), count);
    KXBitSet swept;
    matrix.SweepOnMany({0, 1, 2}, 1e-12, swept);
    EXPECT_TRUE(swept.Test(0) && swept.Test(1));
    EXPECT_FALSE(swept.Test(2));
}

/// A column with each of these diagonal elements stands between two good ones, unrelated to them.
TEST(KXSymMatrix, SweepsOnlyUsablePivots)
{
    for (const double diagonal : {0.0, -1.0, 1e-310, HUGE_VAL, notANumber}) {
        SCOPED_TRACE(diagonal);
        KXSymMatrix matrix = Symmetric({{4}, {0, diagonal}, {2, 0, 3}, {6, 1, 5, 20}});
        KXBitSet swept;
        std::vector<double> coefficients;
        // The dependent and columns outside are not swept, and a column given twice is swept once.
        matrix.SweepOnMany({0, 1, 2, 0, 3, 4}, 1e-12, swept);
        matrix.GetRegCoeffs(swept, coefficients);
        EXPECT_EQ(coefficients, (Row{1.0, missing, 1.0}));
        EXPECT_EQ(matrix.Get(3, 3), 9.0);
        EXPECT_EQ(RowsOf(matrix.GetSweptInverse(swept)),
                  (Rows{{0.375, 0, -0.25}, {0, 0, 0}, {-0.25, 0, 0.5}}));
    }
}

/// The second pivot is 2, a quarter of its diagonal element.
TEST(KXSymMatrix, TheToleranceIsRelativeToTheColumn)
{
    for (const double scale : {1.0, 0x1p-40, 0x1p40}) {
        for (const auto& [limit, count] : {std::pair{0.24, 2u}, {0.26, 1u}, {-1.0, 2u}}) {
            KXSymMatrix matrix = Symmetric({{6}, {6 * scale, 8 * scale * scale}, {0, 0, 1}});
            KXBitSet swept;
            matrix.SweepOnMany({0, 1}, limit, swept);
            EXPECT_EQ(swept.Count(), count) << scale << ", tolerance " << limit;
        }
    }
}

/// Of Hilbert's matrix, whose condition number is 524. The error of the factorization is of the order
/// size² eps times that, relative to the largest element.
TEST(KXSymMatrix, HasACholeskyInverseIfPositiveDefinite)
{
    KXSymMatrix matrix = Symmetric({{1}, {1.0 / 2, 1.0 / 3}, {1.0 / 3, 1.0 / 4, 1.0 / 5}});
    const Rows expected = {{9, -36, 30}, {-36, 192, -180}, {30, -180, 180}};
    ASSERT_TRUE(matrix.CholeskyInverse(matrix));
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j)
            EXPECT_NEAR(matrix.Get(i, j), expected[i][j], 9 * machineEpsilon * 524 * 192);
    }
    ASSERT_TRUE(Symmetric({{0x1p-900}, {0, 0x1p900}}).CholeskyInverse(matrix)); // scale does not matter
    EXPECT_EQ(RowsOf(matrix), (Rows{{0x1p900, 0}, {0, 0x1p-900}}));

    // Not positive definite, the fourth and fifth but for rounding.
    for (const Rows& rows : {Rows{{0}}, Rows{{-1}}, Rows{{1}, {2, 1}}, Rows{{0.01}, {0.03, 0.09}},
                             Rows{{1}, {0, 1}, {0.1, 0.7, 0.5}}, Rows{{1}, {notANumber, 1}}}) {
        KXSymMatrix inverse = Symmetric({{7}});
        EXPECT_FALSE(Symmetric(rows).CholeskyInverse(inverse)) << testing::PrintToString(rows);
        EXPECT_EQ(RowsOf(inverse), (Rows{{7}}));
    }
}

TEST(Matrices, HaveSumsProductsAndSubmatrices)
{
    KXSymMatrix sum(3);
    EXPECT_TRUE(sum.UpdateXX({1, 2, -3}, 2));
    EXPECT_TRUE(sum.UpdateXX({0, 1, 5}, 3));
    EXPECT_EQ(RowsOf(sum), (Rows{{2, 4, -6}, {4, 11, 3}, {-6, 3, 93}}));

    const KXSymMatrix s = Symmetric({{1}, {2, 3}, {-1, 4, 5}});
    const KXSymMatrix m = Symmetric({{2}, {0, 1}, {1, -1, 3}});
    EXPECT_EQ(RowsOf(KXSymMatrix::Sandwich(m, s)), (Rows{{5, 5, 2}, {5, 0, 1}, {2, 1, 15}}));
    EXPECT_EQ(RowsOf(KXDiagMatrix({1, -2, 3}).Sandwich(s)),
              (Rows{{1, -4, -3}, {-4, 12, -24}, {-3, -24, 45}}));
    EXPECT_EQ(KXMathFun::VSV({1, -2, 3}, s), -4.0);
    KXBitSet kept(3);
    kept.Set(0);
    kept.Set(2);
    EXPECT_EQ(RowsOf(s.ExtractSubmatrix(kept)), (Rows{{1, -1}, {-1, 5}}));

    const KXRectMatrix wide = Counting(2, 3);
    EXPECT_EQ(ElementsOf(wide.Product(Counting(3, 2)), 2, 2), (Rows{{22, 28}, {49, 64}}));
    EXPECT_EQ(ElementsOf(Counting(3, 2).Product(wide), 3, 3),
              (Rows{{9, 12, 15}, {19, 26, 33}, {29, 40, 51}}));
    EXPECT_EQ(ElementsOf(KXDiagMatrix({2, -1}).Product(wide), 2, 3), (Rows{{2, 4, 6}, {-4, -5, -6}}));
}
