#include "meta_analysis/regression/MAOrthonormalColumns.h"

#include "meta_analysis/regression/MADesignMatrix.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// What rounding leaves of a column that those before it determine, relative to the column: both the values
/// and what they are computed from are rounded.
constexpr double roundingShare = 16.0 * std::numeric_limits<double>::epsilon();

/// Sums in stretches of `width` sums side by side: short sums keep the rounding error of many rows small, and
/// vector instructions add them.
template <class Term>
double SumOf(std::size_t count, Term term)
{
    constexpr std::size_t width = 8;
    constexpr std::size_t stretch = 512;
    double total = 0.0;
    for (std::size_t first = 0; first < count; first += stretch) {
        const std::size_t end = std::min(count, first + stretch);
        std::array<double, width> sums{};
        std::size_t i = first;
        for (; i + width <= end; i += width) {
            for (std::size_t j = 0; j < width; ++j)
                sums[j] += term(i + j);
        }
        for (; i < end; ++i)
            sums[0] += term(i);
        for (const double sum : sums)
            total += sum;
    }
    return total;
}

double MeanOf(const Values& values)
{
    return SumOf(values.size(), [v = values.data()](std::size_t i) { return v[i]; }) /
           static_cast<double>(values.size());
}

/// With weights relative to the largest, of which no sum overflows.
double WeightedMeanOf(const Values& values, const Values& weights)
{
    const double largest = *std::max_element(weights.begin(), weights.end());
    const auto weightAt = [&](std::size_t i) { return weights[i] / largest; };
    const double sum = SumOf(values.size(), [&](std::size_t i) { return weightAt(i) * values[i]; });
    return sum / SumOf(values.size(), weightAt);
}

/// Products of deviations from two values.
double DotAbout(const Values& left, double leftMean, const Values& right, double rightMean)
{
    return SumOf(left.size(), [=, a = left.data(), b = right.data()](std::size_t i) {
        return (a[i] - leftMean) * (b[i] - rightMean);
    });
}

void Subtract(Values& values, double factor, const Values& column)
{
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] -= factor * column[i];
}

/// The power of two below the largest magnitude; 0 for a column of zeros.
double ScaleOf(const Values& values)
{
    double largest = 0.0;
    for (const double value : values)
        largest = std::max(largest, std::abs(value));
    return largest == 0.0 ? 0.0 : std::ldexp(1.0, std::ilogb(largest));
}

} // namespace

/// Counted from its centre.
struct MAOrthonormalColumns::Column
{
    Values values;
    double scale;
    double centre;
    double rawSquares; ///< before the centre was subtracted
};

MAOrthonormalColumns::MAOrthonormalColumns(const MADesignRows& rows, bool hasIntercept, double tolerance)
    : rowCount_(rows.Count()), hasIntercept_(hasIntercept), nonRedundant_(rows.columnCount)
{
    for (std::size_t j = 0; j < rows.columnCount; ++j)
        AddColumn(rows, j, tolerance);
    upper_ = MASquareMatrix(Rank());
    for (std::size_t j = 0; j < Rank(); ++j) {
        for (std::size_t i = 0; i <= j; ++i)
            upper_(i, j) = r_[j][i];
    }
    AddDependent(rows);
    work_ = {};
    r_ = {};
}

MAOrthonormalColumns::Column MAOrthonormalColumns::ScaledColumn(const MADesignRows& rows,
                                                                std::size_t position) const
{
    Column column{Values(rowCount_), 0.0, 0.0, 0.0};
    for (std::size_t i = 0; i < rowCount_; ++i)
        column.values[i] = rows.Row(i)[position];
    column.scale = ScaleOf(column.values);
    if (column.scale == 0.0)
        return column;
    for (double& value : column.values)
        value /= column.scale;
    column.rawSquares = DotAbout(column.values, 0.0, column.values, 0.0);
    if (hasIntercept_ && position > 0) {
        column.centre = WeightedMeanOf(column.values, rows.weights);
        for (double& value : column.values)
            value -= column.centre;
    }
    return column;
}

/// 0 for the intercept's column itself and without one.
double MAOrthonormalColumns::OriginOf(const Values& values) const
{
    return hasIntercept_ && !work_.empty() ? MeanOf(values) : 0.0;
}

double MAOrthonormalColumns::SquaresOf(const Values& values) const
{
    const double origin = OriginOf(values);
    return DotAbout(values, origin, values, origin);
}

void MAOrthonormalColumns::AddColumn(const MADesignRows& rows, std::size_t position, double tolerance)
{
    Column column = ScaledColumn(rows, position);
    const double squares = SquaresOf(column.values);
    Values shares(Rank() + 1);
    Orthogonalize(column.values, shares.data());
    const double left = SquaresOf(column.values);
    if (!(left > tolerance * squares && left > roundingShare * roundingShare * column.rawSquares))
        return;
    shares.back() = std::sqrt(left);
    for (double& value : column.values)
        value /= shares.back();
    origins_.push_back(OriginOf(column.values));
    nonRedundant_.Set(position);
    kept_.push_back(position);
    scales_.push_back(column.scale);
    centres_.push_back(column.centre);
    r_.push_back(std::move(shares));
    work_.push_back(std::move(column.values));
}

void MAOrthonormalColumns::Orthogonalize(Values& values, double* shares) const
{
    for (int pass = 0; pass < 2; ++pass) {
        for (std::size_t j = hasIntercept_ ? 1 : 0; j < work_.size(); ++j) {
            const double share = DotAbout(work_[j], origins_[j], values, OriginOf(values));
            shares[j] += share;
            Subtract(values, share, work_[j]);
        }
    }
}

void MAOrthonormalColumns::AddDependent(const MADesignRows& rows)
{
    Values residuals(rowCount_);
    for (std::size_t i = 0; i < rowCount_; ++i)
        residuals[i] = rows.Dependent(i);
    if (hasIntercept_ && rowCount_ > 0) {
        dependentCentre_ = WeightedMeanOf(residuals, rows.weights);
        for (double& value : residuals)
            value -= dependentCentre_;
    }
    unweighted_.assign(Rank(), 0.0);
    Orthogonalize(residuals, unweighted_.data());
    residualSum_ = SquaresOf(residuals);
    StoreRows(residuals);
}

void MAOrthonormalColumns::StoreRows(const Values& residuals)
{
    cells_.resize(rowCount_ * (Rank() + 1));
    for (std::size_t j = 0; j <= Rank(); ++j) {
        const Values& column = j < Rank() ? work_[j] : residuals;
        for (std::size_t i = 0; i < rowCount_; ++i)
            cells_[i * (Rank() + 1) + j] = column[i];
    }
}

/// From x = R'z.
Values MAOrthonormalColumns::Coordinates(const double* predictors) const
{
    Values coordinates(Rank());
    for (std::size_t j = 0; j < Rank(); ++j)
        coordinates[j] = predictors[kept_[j]] / scales_[j] - centres_[j];
    SolveTransposed(upper_, coordinates.data());
    return coordinates;
}

/// A row of R⁻¹. The columns are counted from their centres, and so is that row of the intercept where
/// everything else is at its centre: it is moved to 0.
Values MAOrthonormalColumns::DirectionOfCoefficient(std::size_t index) const
{
    Values direction(Rank());
    direction[index] = 1.0 / scales_[index];
    for (std::size_t j = 0; hasIntercept_ && index == 0 && j < Rank(); ++j)
        direction[j] -= centres_[j];
    SolveTransposed(upper_, direction.data());
    return direction;
}

} // namespace MA_NAMESPACE
