#include "support/Compare.h"
#include "support/Data.h"

#include "meta_analysis/platform/common/KXDiagMatrix.h"
#include "meta_analysis/platform/common/KXMathFun.h"
#include "meta_analysis/platform/common/KXSymMatrix.h"

#include <new>
#include <utility>

namespace {

constexpr double tolerance = 1e-12;

KXSymMatrix MatrixOf(const Rows& rows)
{
    KXSymMatrix matrix(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j)
            matrix.Set(i, j, rows[i][j]);
    }
    return matrix;
}

Rows RowsOf(const KXSymMatrix& matrix)
{
    Rows rows(matrix.Size(), std::vector<double>(matrix.Size()));
    for (std::size_t i = 0; i < matrix.Size(); ++i) {
        for (std::size_t j = 0; j < matrix.Size(); ++j)
            rows[i][j] = matrix.Get(i, j);
    }
    return rows;
}

} // namespace

TEST(KXSymMatrix, UpdateXXAddsTheWeightedCrossProducts)
{
    KXSymMatrix matrix(3);
    ASSERT_TRUE(matrix.UpdateXX({1, 2, -3}, 2));
    ASSERT_TRUE(matrix.UpdateXX({0, 1, 5}, 3));
    EXPECT_FALSE(matrix.UpdateXX({1, 2}, 1));
    EXPECT_EQ(RowsOf(matrix), (Rows{{2, 4, -6}, {4, 11, 3}, {-6, 3, 93}}));
}

/// Some sizes have loops of their own, which must add up in the same order.
TEST(KXSymMatrix, ManyRowsAtOnceGiveTheBitsOfOneByOne)
{
    constexpr std::size_t count = 9;
    std::vector<double> weights(count);
    for (std::size_t i = 0; i < count; ++i)
        weights[i] = 1.0 / static_cast<double>(i + 3);
    for (std::size_t size = 0; size <= 8; ++size) {
        SCOPED_TRACE(size);
        std::vector<double> block(count * size);
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = std::sin(static_cast<double>(i));
        KXSymMatrix matrix(size);
        KXSymMatrix expected(size);
        matrix.UpdateXX(block.data(), weights.data(), 4);
        matrix.UpdateXX(block.data() + 4 * size, weights.data() + 4, count - 4);
        Rows rows;
        for (std::size_t i = 0; i < count; ++i) {
            const auto* row = block.data() + i * size;
            rows.emplace_back(row, row + size);
            expected.UpdateXX(rows.back(), weights[i]);
        }
        EXPECT_EQ(RowsOf(matrix), RowsOf(expected));

        std::vector<double> forms(count - 1, KXMV::Missing()); // of values one further on than each row's
        matrix.QuadraticForms(block.data() + 1, size, size == 0 ? 0 : forms.size(), forms.data());
        for (std::size_t i = 0; size > 0 && i < forms.size(); ++i) {
            const auto* row = block.data() + 1 + i * size;
            EXPECT_EQ(forms[i], matrix.QuadraticForm(Row(row, row + size)));
        }
    }
}

TEST(KXSymMatrix, SweepsOnlyUsablePivots)
{
    // A column with each of these diagonal elements stands between two good ones, unrelated to them.
    for (const double diagonal : {0.0, -1.0, 1e-310, HUGE_VAL, notANumber}) {
        SCOPED_TRACE(diagonal);
        KXSymMatrix matrix = MatrixOf({{4}, {0, diagonal}, {2, 0, 3}, {6, 1, 5, 20}});
        KXBitSet swept;
        std::vector<double> coefficients;
        // The dependent and columns outside are not swept, and a column given twice is swept once.
        matrix.SweepOnMany({0, 1, 2, 0, 3, 4}, tolerance, swept);
        matrix.GetRegCoeffs(swept, coefficients);
        EXPECT_EQ(coefficients, (Row{1.0, KXMV::Missing(), 1.0}));
        EXPECT_EQ(matrix.Get(3, 3), 9.0);
        EXPECT_EQ(RowsOf(matrix.GetSweptInverse(swept)),
                  (Rows{{0.375, 0, -0.25}, {0, 0, 0}, {-0.25, 0, 0.5}}));
    }
}

TEST(KXSymMatrix, TheToleranceIsRelativeToTheColumn)
{
    // The second pivot is 2, a quarter of its diagonal element.
    for (const double scale : {1.0, 0x1p-40, 0x1p40}) {
        for (const auto& [limit, count] : {std::pair{0.24, 2u}, {0.26, 1u}, {-1.0, 2u}}) {
            KXSymMatrix matrix = MatrixOf({{6}, {6 * scale, 8 * scale * scale}, {0, 0, 1}});
            KXBitSet swept;
            matrix.SweepOnMany({0, 1}, limit, swept);
            EXPECT_EQ(swept.Count(), count) << scale << ", tolerance " << limit;
        }
    }
}

TEST(KXSymMatrix, CholeskyInverse)
{
    // Hilbert's matrix, condition number 524, and its inverse. The error of the factorization is of the
    // order size² eps times the condition number, relative to the largest element.
    KXSymMatrix matrix = MatrixOf({{1}, {1.0 / 2, 1.0 / 3}, {1.0 / 3, 1.0 / 4, 1.0 / 5}});
    const Rows expected = {{9, -36, 30}, {-36, 192, -180}, {30, -180, 180}};
    ASSERT_TRUE(matrix.CholeskyInverse(matrix));
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j)
            EXPECT_NEAR(matrix.Get(i, j), expected[i][j], 9 * machineEpsilon * 524 * 192);
    }
    ASSERT_TRUE(MatrixOf({{0x1p-900}, {0, 0x1p900}}).CholeskyInverse(matrix)); // scale does not matter
    EXPECT_EQ(RowsOf(matrix), (Rows{{0x1p900, 0}, {0, 0x1p-900}}));

    // Not positive definite, the fourth and fifth but for rounding.
    for (const Rows& rows : {Rows{{0}}, Rows{{-1}}, Rows{{1}, {2, 1}}, Rows{{0.01}, {0.03, 0.09}},
                             Rows{{1}, {0, 1}, {0.1, 0.7, 0.5}}, Rows{{1}, {notANumber, 1}}}) {
        KXSymMatrix inverse = MatrixOf({{7}});
        EXPECT_FALSE(MatrixOf(rows).CholeskyInverse(inverse)) << rows.size() << rows.back().front();
        EXPECT_EQ(RowsOf(inverse), (Rows{{7}}));
    }
}

TEST(KXSymMatrix, ProductsAndExtraction)
{
    const KXSymMatrix s = MatrixOf({{1}, {2, 3}, {-1, 4, 5}});
    const KXSymMatrix m = MatrixOf({{2}, {0, 1}, {1, -1, 3}});
    EXPECT_EQ(RowsOf(KXSymMatrix::Sandwich(m, s)), (Rows{{5, 5, 2}, {5, 0, 1}, {2, 1, 15}}));
    EXPECT_EQ(RowsOf(KXDiagMatrix({1, -2, 3}).Sandwich(s)),
              (Rows{{1, -4, -3}, {-4, 12, -24}, {-3, -24, 45}}));
    EXPECT_EQ(KXMathFun::VSV({1, -2, 3}, s), -4.0);

    KXBitSet kept(3);
    kept.Set(0);
    kept.Set(2);
    EXPECT_EQ(RowsOf(s.ExtractSubmatrix(kept)), (Rows{{1, -1}, {-1, 5}}));
}

TEST(KXSymMatrix, SizesThatDoNotMatch)
{
    KXSymMatrix matrix(2);
    matrix.Set(2, 0, 1.0);
    EXPECT_EQ(RowsOf(matrix), (Rows{{0, 0}, {0, 0}}));
    EXPECT_TRUE(KXMV::IsMissing(matrix.Get(0, 2)));
    EXPECT_TRUE(KXMV::IsMissing(KXMathFun::VSV({1}, matrix)));
    EXPECT_EQ(KXSymMatrix::Sandwich(matrix, KXSymMatrix(3)).Size(), 0u);
    EXPECT_EQ(KXDiagMatrix({1}).Sandwich(matrix).Size(), 0u);
    EXPECT_THROW(matrix.Resize(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
    KXBitSet swept;
    KXSymMatrix().SweepOnMany({0}, tolerance, swept);
    EXPECT_EQ(swept.Size(), 0u);
}
