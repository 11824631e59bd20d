#include "meta_analysis/regression/design/MAOrthonormalColumns.h"

#include "meta_analysis/regression/design/MADesignRow.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// Rounding leaves at most this part of a column that those before it determine: both the values and their
/// fit are rounded.
constexpr double roundingShare = 16.0 * std::numeric_limits<double>::epsilon();

/// Stores the terms of a stretch, then adds them up in eight sums side by side: vector instructions do both,
/// and short sums keep the rounding error of many rows small.
template <class Term>
double SumOf(std::size_t count, Term term)
{
    constexpr std::size_t lanes = 8;
    constexpr std::size_t stretch = 256;
    double terms[stretch];
    double total = 0.0;
    for (std::size_t first = 0; first < count; first += stretch) {
        const std::size_t length = std::min(stretch, count - first);
        for (std::size_t i = 0; i < length; ++i)
            terms[i] = term(first + i);
        std::fill(terms + length, terms + (length + lanes - 1) / lanes * lanes, 0.0);
        double sums[lanes] = {};
        for (std::size_t i = 0; i < length; i += lanes) {
            for (std::size_t j = 0; j < lanes; ++j)
                sums[j] += terms[i + j];
        }
        for (const double sum : sums)
            total += sum;
    }
    return total;
}

/// Sum of the products of deviations from two values.
double DotAbout(const Values& left, double leftOrigin, const Values& right, double rightOrigin)
{
    return SumOf(left.size(), [=, a = left.data(), b = right.data()](std::size_t i) {
        return (a[i] - leftOrigin) * (b[i] - rightOrigin);
    });
}

void Multiply(Values& values, double factor)
{
    for (double& value : values)
        value *= factor;
}

/// Replaces each value by `change(value, i)`, and returns the mean of the new ones.
template <class Change>
double MeanAfter(Values& values, Change change)
{
    const double sum =
        SumOf(values.size(), [&, v = values.data()](std::size_t i) { return v[i] = change(v[i], i); });
    return sum / static_cast<double>(values.size());
}

/// The weights are taken relative to the largest, so that no sum overflows.
double WeightedMeanOf(const Values& values, const Values& weights)
{
    const double factor = 1.0 / *std::max_element(weights.begin(), weights.end());
    const auto weightAt = [factor, w = weights.data()](std::size_t i) { return w[i] * factor; };
    const double sum =
        SumOf(values.size(), [=, v = values.data()](std::size_t i) { return weightAt(i) * v[i]; });
    return sum / SumOf(values.size(), weightAt);
}

} // namespace

/// A column, counted from its centre when an intercept stands before it.
struct MAOrthonormalColumns::Column
{
    Values values;
    double scale = 1.0;
    double centre = 0.0;
    double origin = 0.0; ///< unweighted mean, from which the sums of squares are taken

    double Squares() const { return DotAbout(values, origin, values, origin); }
};

MAOrthonormalColumns::MAOrthonormalColumns(const MADesignRows& rows, bool hasIntercept, double tolerance)
    : rowCount_(rows.Count()),
      hasIntercept_(hasIntercept),
      nonRedundant_(rows.columnCount),
      margin_(8.0 * std::sqrt(tolerance) + 1e-9)
{
    for (std::size_t j = 0; j < rows.columnCount; ++j)
        AddColumn(ColumnOf(rows, j), rows.weights, j, tolerance);
    upper_ = MASquareMatrix(Rank());
    for (std::size_t j = 0; j < Rank(); ++j) {
        for (std::size_t i = 0; i <= j; ++i)
            upper_(i, j) = r_[j][i];
    }
    AddDependent(ColumnOf(rows, rows.columnCount), rows.weights);
    work_ = {};
    r_ = {};
}

/// The scale is the power of two below the largest magnitude; 0 for a column of zeros.
MAOrthonormalColumns::Column MAOrthonormalColumns::ColumnOf(const MADesignRows& rows,
                                                            std::size_t position) const
{
    Column column;
    column.values.resize(rowCount_);
    double largest = 0.0;
    for (std::size_t i = 0; i < rowCount_; ++i) {
        const double value = rows.Row(i)[position];
        column.values[i] = value;
        if (std::abs(value) > largest) // seldom true, so that no value waits for the one before
            largest = std::abs(value);
    }
    column.scale = largest == 0.0 ? 0.0 : std::ldexp(1.0, std::ilogb(largest));
    return column;
}

/// Divides the column by its scale and, beside an intercept, counts it from its centre.
void MAOrthonormalColumns::Centre(Column& column, const Values& weights) const
{
    const double factor = 1.0 / column.scale;
    if (!HasIntercept())
        return Multiply(column.values, factor);
    const double centre = WeightedMeanOf(column.values, weights) * factor;
    column.origin = MeanAfter(column.values, [=](double x, std::size_t) { return x * factor - centre; });
    column.centre = centre;
}

void MAOrthonormalColumns::AddColumn(Column column, const Values& weights, std::size_t position,
                                     double tolerance)
{
    if (column.scale == 0.0) {
        redundant_.push_back({position, 1.0, 0.0, 0.0, {}});
        return;
    }
    Centre(column, weights);
    const double mean = column.centre + column.origin;
    const double squares = column.Squares();
    const double rawSquares = squares + static_cast<double>(rowCount_) * mean * mean;
    Values shares(Rank() + 1);
    const double left = Orthogonalize(column, squares, shares.data());
    if (!(left > tolerance * squares && left > roundingShare * roundingShare * rawSquares)) {
        shares.pop_back();
        redundant_.push_back({position, column.scale, column.centre + column.origin,
                              std::sqrt(squares / static_cast<double>(rowCount_)), std::move(shares)});
        return;
    }
    shares.back() = std::sqrt(left);
    Multiply(column.values, 1.0 / shares.back());
    origins_.push_back(column.origin / shares.back());
    nonRedundant_.Set(position);
    kept_.push_back(position);
    scales_.push_back(column.scale);
    centres_.push_back(column.centre);
    r_.push_back(std::move(shares));
    work_.push_back(std::move(column.values));
}

/// Returns the residual sum of squares. Repeats the step only where the first left less than half of the sum:
/// otherwise the rounding error of the first is as small relative to the residuals as to the column.
double MAOrthonormalColumns::Orthogonalize(Column& column, double squares, double* shares) const
{
    double left = squares;
    for (int pass = 0; pass < 2 && (pass == 0 || left < 0.5 * squares); ++pass) {
        const std::size_t start = hasIntercept_ ? 1 : 0;
        if (work_.size() <= start)
            return left;
        for (std::size_t j = start; j < work_.size(); ++j) {
            const double share = DotAbout(work_[j], origins_[j], column.values, column.origin);
            shares[j] += share;
            const auto subtract = [share, z = work_[j].data()](double x, std::size_t i) {
                return x - share * z[i];
            };
            const double mean = MeanAfter(column.values, subtract);
            column.origin = HasIntercept() ? mean : 0.0;
        }
        left = column.Squares();
    }
    return left;
}

void MAOrthonormalColumns::AddDependent(Column dependent, const Values& weights)
{
    dependent.scale = 1.0;
    Centre(dependent, weights);
    dependentCentre_ = dependent.centre;
    unweighted_.assign(Rank(), 0.0);
    residualSum_ = Orthogonalize(dependent, dependent.Squares(), unweighted_.data());
    StoreRows(dependent.values);
}

void MAOrthonormalColumns::StoreRows(const Values& residuals)
{
    cells_.resize(rowCount_ * (Rank() + 1));
    double* cell = cells_.data();
    for (std::size_t i = 0; i < rowCount_; ++i) {
        for (const Values& column : work_)
            *cell++ = column[i];
        *cell++ = residuals[i];
    }
}

/// Solves x = R'z for z.
Values MAOrthonormalColumns::Coordinates(const double* predictors) const
{
    Values coordinates(Rank());
    for (std::size_t j = 0; j < Rank(); ++j)
        coordinates[j] = predictors[kept_[j]] / scales_[j] - centres_[j];
    SolveTransposed(upper_, coordinates.data());
    return coordinates;
}

/// A row of R⁻¹.
Values MAOrthonormalColumns::DirectionOfCoefficient(std::size_t index) const
{
    Values weights(nonRedundant_.Size());
    weights[kept_[index]] = 1.0;
    return DirectionOf(weights);
}

/// Solves R'd = l. The columns are counted from their centres; the weight of the intercept is moved from
/// these centres to 0.
Values MAOrthonormalColumns::DirectionOf(const Values& weights) const
{
    const double ofIntercept = hasIntercept_ && Rank() > 0 ? weights[kept_.front()] : 0.0;
    Values direction(Rank());
    for (std::size_t j = 0; j < Rank(); ++j)
        direction[j] = weights[kept_[j]] / scales_[j] - ofIntercept * centres_[j];
    SolveTransposed(upper_, direction.data());
    return direction;
}

bool MAOrthonormalColumns::Determines(const double* predictors) const
{
    const Values coordinates = Coordinates(predictors);
    return std::all_of(redundant_.begin(), redundant_.end(), [&](const RedundantColumn& column) {
        const double value = predictors[column.position] / column.scale;
        const double distance = value - column.centre;
        const double determined = Dot(column.shares.data(), coordinates.data(), column.shares.size());
        return std::abs(distance - determined) <=
               margin_ * (column.spread + std::abs(distance)) + roundingShare * std::abs(value);
    });
}

} // namespace MA_NAMESPACE
