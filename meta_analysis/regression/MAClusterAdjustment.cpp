#include "meta_analysis/regression/MAClusterAdjustment.h"

#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/regression/MAInverseRoot.h"
#include "meta_analysis/regression/design/MASymmetricEigen.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// A direction of which the other clusters have no more than this part of the information counts as one that
/// the cluster alone determines: rounding leaves a few 1e-16.
constexpr double negligibleInformation = 1e-12;

/// At most 2p clusters have more than this part of a unit of information, of the p units that there are.
constexpr double largeShare = 0.5;

/// Adds weight * left right'.
void AddProduct(const double* left, const double* right, double weight, MASquareMatrix& sum)
{
    for (std::size_t a = 0; a < sum.Size(); ++a) {
        const double scaled = weight * left[a];
        for (std::size_t b = 0; b < sum.Size(); ++b)
            sum(a, b) += scaled * right[b];
    }
}

/// row' matrix.
void MultiplyRow(const double* row, const MASquareMatrix& matrix, double* product)
{
    std::fill_n(product, matrix.Size(), 0.0);
    for (std::size_t a = 0; a < matrix.Size(); ++a)
        for (std::size_t b = 0; b < matrix.Size(); ++b)
            product[b] += row[a] * matrix(a, b);
}

/// Rows of p values, and their variances relative to the smallest.
struct Rows
{
    std::size_t rank;
    Values cells;
    Values variances;

    std::size_t Count() const { return variances.size(); }
    double* Row(std::size_t i) { return cells.data() + i * rank; }
    const double* Row(std::size_t i) const { return cells.data() + i * rank; }
    double LargestVariance() const { return *std::max_element(variances.begin(), variances.end()); }
};

Rows RowsOf(const MAClusters& clusters, std::size_t j)
{
    const std::size_t first = clusters.starts[j];
    const std::size_t last = clusters.starts[j + 1];
    Rows rows = {clusters.rank, Values(clusters.Row(first), clusters.Row(last)),
                 Values(&clusters.variances[first], &clusters.variances[first] + (last - first))};
    const double smallest = *std::min_element(rows.variances.begin(), rows.variances.end());
    for (double& variance : rows.variances)
        variance /= smallest;
    return rows;
}

/// Q_j'Q_j, the cluster's part of the information.
MASquareMatrix InformationOf(const Rows& rows)
{
    MASquareMatrix information(rows.rank);
    for (std::size_t i = 0; i < rows.Count(); ++i)
        AddProduct(rows.Row(i), rows.Row(i), 1.0, information);
    return information;
}

double Trace(const MASquareMatrix& matrix)
{
    double trace = 0.0;
    for (std::size_t a = 0; a < matrix.Size(); ++a)
        trace += matrix(a, a);
    return trace;
}

MASquareMatrix Difference(const MASquareMatrix& left, const MASquareMatrix& right)
{
    MASquareMatrix difference(left.Size());
    for (std::size_t a = 0; a < left.Size(); ++a)
        for (std::size_t b = 0; b < left.Size(); ++b)
            difference(a, b) = left(a, b) - right(a, b);
    return difference;
}

/// 1 - Q_j'Q_j as the sum over the other clusters: no digit of a small part is lost.
MASquareMatrix OtherInformation(const MAClusters& clusters, std::size_t j)
{
    MASquareMatrix information(clusters.rank);
    for (std::size_t i = 0; i < clusters.RowCount(); ++i)
        if (i < clusters.starts[j] || i >= clusters.starts[j + 1])
            AddProduct(clusters.Row(i), clusters.Row(i), 1.0, information);
    return information;
}

/// The rows of a cluster and what the others know, in coordinates in which a cluster with a large share has
/// the directions of the other's information as axes, those without any first.
struct Adjusted
{
    Rows rows;
    MASquareMatrix others = MASquareMatrix(); ///< 1 - Q'Q
    MASquareMatrix axes = MASquareMatrix();   ///< empty where the coordinates are as they were
    std::size_t alone = 0;                    ///< number of directions that the cluster alone determines
    double leastInformation = 1.0;            ///< lower bound of the others' in all other directions
};

void MultiplyRows(Rows& rows, const MASquareMatrix& matrix)
{
    Values product(rows.rank);
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        MultiplyRow(rows.Row(i), matrix, product.data());
        std::copy(product.begin(), product.end(), rows.Row(i));
    }
}

/// The sums over all others, for the clusters with a large share, cost O(k p³) altogether.
Adjusted Prepare(const MAClusters& clusters, std::size_t j, Rows rows, const MASquareMatrix& own)
{
    Adjusted adjusted = {.rows = std::move(rows)};
    const double share = Trace(own);
    if (share <= largeShare) {
        adjusted.others = Difference(UnitMatrix(clusters.rank), own);
        adjusted.leastInformation = 1.0 - share;
        return adjusted;
    }
    const MASymmetricEigen eigen = EigenOf(OtherInformation(clusters, j));
    adjusted.others = MASquareMatrix(clusters.rank);
    adjusted.axes = eigen.vectors;
    MultiplyRows(adjusted.rows, adjusted.axes);
    for (std::size_t a = 0; a < clusters.rank; ++a) {
        const bool isAlone = !(eigen.values[a] > negligibleInformation);
        adjusted.alone += isAlone ? 1 : 0;
        adjusted.others(a, a) = isAlone ? 0.0 : eigen.values[a];
    }
    if (adjusted.alone < clusters.rank)
        adjusted.leastInformation = std::min(1.0, eigen.values[adjusted.alone]);
    return adjusted;
}

/// Orthonormal columns N of the null space of B: Φ⁻¹Qc for each direction c that the cluster alone
/// determines. The second pass of Gram and Schmidt removes the rounding of the first.
std::vector<Values> NullSpace(const Adjusted& adjusted)
{
    std::vector<Values> columns;
    for (std::size_t c = 0; c < adjusted.alone; ++c) {
        Values column(adjusted.rows.Count());
        for (std::size_t i = 0; i < column.size(); ++i)
            column[i] = adjusted.rows.Row(i)[c] / adjusted.rows.variances[i];
        for (std::size_t pass = 0; pass < 2 * columns.size(); ++pass) {
            const Values& earlier = columns[pass % columns.size()];
            const double share = Dot(earlier.data(), column.data(), column.size());
            for (std::size_t i = 0; i < column.size(); ++i)
                column[i] -= share * earlier[i];
        }
        const double norm = std::sqrt(Dot(column.data(), column.data(), column.size()));
        for (double& value : column)
            value /= norm;
        columns.push_back(std::move(column));
    }
    return columns;
}

/// Removes from each column of the rows its part in the null space.
void Project(const std::vector<Values>& nullSpace, Rows& rows)
{
    for (const Values& column : nullSpace) {
        Values shares(rows.rank);
        for (std::size_t i = 0; i < rows.Count(); ++i)
            for (std::size_t a = 0; a < rows.rank; ++a)
                shares[a] += column[i] * rows.Row(i)[a];
        for (std::size_t i = 0; i < rows.Count(); ++i)
            for (std::size_t a = 0; a < rows.rank; ++a)
                rows.Row(i)[a] -= column[i] * shares[a];
    }
}

/// Adds weight (B + s)⁻¹Y to the sum. With G = (Φ² + s)⁻¹ and U = ΦQ it is GY + GU P⁻¹ U'GY, where
/// P = 1 - U'GU = (1 - Q'Q) + s Q'GQ is a sum of positive terms.
void AddInverse(const Adjusted& adjusted, const Rows& y, const MAInverseRootTerm& term, Rows& sum)
{
    const Rows& q = adjusted.rows;
    MASquareMatrix middle = adjusted.others;
    MASquareMatrix products(q.rank);
    for (std::size_t i = 0; i < q.Count(); ++i) {
        const double inverse = 1.0 / (Square(q.variances[i]) + term.shift);
        AddProduct(q.Row(i), q.Row(i), term.shift * inverse, middle);
        AddProduct(y.Row(i), q.Row(i), q.variances[i] * inverse, products); // transposed: Y'GU
    }
    const MASquareMatrix factor = CholeskyFactor(middle);
    for (std::size_t a = 0; a < q.rank; ++a) { // a row of Y'GU P⁻¹
        SolveTransposed(factor, &products(a, 0));
        SolveUpper(factor, &products(a, 0));
    }
    for (std::size_t i = 0; i < q.Count(); ++i) {
        const double inverse = term.weight / (Square(q.variances[i]) + term.shift);
        for (std::size_t a = 0; a < q.rank; ++a)
            sum.Row(i)[a] +=
                inverse * (y.Row(i)[a] + q.variances[i] * Dot(&products(a, 0), q.Row(i), q.rank));
    }
}

/// B^(+1/2)Y. The eigenvalues of B other than 0 lie between the least information of the others, for the
/// smallest variance is 1, and the largest variance squared.
Rows InverseRoot(const Adjusted& adjusted, const std::vector<Values>& nullSpace, const Rows& y)
{
    Rows sum = {y.rank, Values(y.cells.size()), y.variances};
    if (adjusted.alone == y.rank)
        return sum;
    for (const MAInverseRootTerm& term :
         InverseRootTerms(adjusted.leastInformation, Square(y.LargestVariance())))
        AddInverse(adjusted, y, term, sum);
    Project(nullSpace, sum);
    return sum;
}

/// The rows of A'WX Φ^(1/2), so that the score is the sum of these rows times the standardised residuals, and
/// the expectation of ss'.
struct ScoreRows
{
    Rows rows;
    MASquareMatrix expected;
};

ScoreRows AdjustedRows(const Adjusted& adjusted)
{
    const std::vector<Values> nullSpace = NullSpace(adjusted);
    Rows y = adjusted.rows;
    Project(nullSpace, y);
    Rows roots = InverseRoot(adjusted, nullSpace, y);
    if (adjusted.axes.Size() > 0) {
        MultiplyRows(roots, Transposed(adjusted.axes));
        MultiplyRows(y, Transposed(adjusted.axes));
    }
    for (std::size_t i = 0; i < roots.Count(); ++i)
        for (std::size_t a = 0; a < roots.rank; ++a)
            roots.Row(i)[a] *= roots.variances[i];
    return {std::move(roots), InformationOf(y)};
}

/// The single row of a cluster of one study, without a large share: B is the number 1 - h.
ScoreRows AdjustedRow(Rows row, const MASquareMatrix& own)
{
    const double root = std::sqrt(1.0 - Trace(own));
    for (double& value : row.cells)
        value /= root;
    return {std::move(row), own};
}

/// Without adjustment the rows are those of Q, and the expectation is Q'(1 - QQ')Q.
ScoreRows ScoreRowsOf(const MAClusters& clusters, std::size_t j, MAConst::SANDWICHTYPE type,
                      const MASquareMatrix& own)
{
    Rows rows = RowsOf(clusters, j);
    if (!AdjustsResiduals(type))
        return {std::move(rows), Difference(own, Product(own, own))};
    if (rows.Count() == 1 && Trace(own) <= largeShare)
        return AdjustedRow(std::move(rows), own);
    return AdjustedRows(Prepare(clusters, j, std::move(rows), own));
}

} // namespace

MAClusterShare ShareOf(const MAClusters& clusters, std::size_t j, MAConst::SANDWICHTYPE type)
{
    const MASquareMatrix own = InformationOf(RowsOf(clusters, j));
    const ScoreRows scores = ScoreRowsOf(clusters, j, type, own);
    MAClusterShare share = {Values(clusters.rank), MASquareMatrix(clusters.rank), own, scores.expected,
                            Trace(own) > largeShare};
    for (std::size_t i = 0; i < scores.rows.Count(); ++i) {
        const std::size_t row = clusters.starts[j] + i;
        for (std::size_t a = 0; a < clusters.rank; ++a)
            share.score[a] += scores.rows.Row(i)[a] * clusters.residuals[row];
        AddProduct(scores.rows.Row(i), clusters.Row(row), 1.0, share.cross);
    }
    return share;
}

} // namespace MA_NAMESPACE
