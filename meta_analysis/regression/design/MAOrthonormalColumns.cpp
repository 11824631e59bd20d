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

double MAOrthonormalColumns::Column::Squares() const
{
    return DotAbout(values, origin, values, origin);
}

void MAOrthonormalColumns::Assign(const MADesignRows& rows, bool hasIntercept, double tolerance)
{
    Restart(rows, hasIntercept, tolerance);
    for (std::size_t j = 0; j < rows.columnCount; ++j) {
        ReadColumn(rows, j);
        AddColumn(rows.weights, j, tolerance);
    }
    upper_.Resize(Rank());
    for (std::size_t j = 0; j < Rank(); ++j) {
        for (std::size_t i = 0; i <= j; ++i)
            upper_(i, j) = r_[j][i];
    }
    ReadColumn(rows, rows.columnCount);
    AddDependent(rows.weights);
}

void MAOrthonormalColumns::Restart(const MADesignRows& rows, bool hasIntercept, double tolerance)
{
    rowCount_ = rows.Count();
    hasIntercept_ = hasIntercept;
    nonRedundant_.Resize(0);
    nonRedundant_.Resize(rows.columnCount);
    margin_ = 8.0 * std::sqrt(tolerance) + 1e-9;
    kept_.clear();
    redundant_.clear();
    scales_.clear();
    centres_.clear();
    origins_.clear();
    if (work_.size() < rows.columnCount) {
        work_.resize(rows.columnCount);
        r_.resize(rows.columnCount);
    }
}

void MAOrthonormalColumns::ReleaseWorkspace()
{
    work_ = r_ = {};
    column_ = {};
}

/// The scale is the power of two below the largest magnitude; 0 for a column of zeros.
void MAOrthonormalColumns::ReadColumn(const MADesignRows& rows, std::size_t position)
{
    column_.values.resize(rowCount_);
    column_.centre = column_.origin = 0.0;
    double largest = 0.0;
    for (std::size_t i = 0; i < rowCount_; ++i) {
        const double value = rows.Row(i)[position];
        column_.values[i] = value;
        if (std::abs(value) > largest) // seldom true, so that no value waits for the one before
            largest = std::abs(value);
    }
    column_.scale = largest == 0.0 ? 0.0 : std::ldexp(1.0, std::ilogb(largest));
}

/// Divides the column by its scale and, beside an intercept, counts it from its centre.
void MAOrthonormalColumns::Centre(const Values& weights)
{
    const double factor = 1.0 / column_.scale;
    if (!HasIntercept())
        return Multiply(column_.values, factor);
    const double centre = WeightedMeanOf(column_.values, weights) * factor;
    column_.origin = MeanAfter(column_.values, [=](double x, std::size_t) { return x * factor - centre; });
    column_.centre = centre;
}

void MAOrthonormalColumns::AddColumn(const Values& weights, std::size_t position, double tolerance)
{
    if (column_.scale == 0.0) {
        redundant_.push_back({position, 1.0, 0.0, 0.0, {}});
        return;
    }
    Centre(weights);
    const double mean = column_.centre + column_.origin;
    const double squares = column_.Squares();
    const double rawSquares = squares + static_cast<double>(rowCount_) * mean * mean;
    shares_.assign(Rank() + 1, 0.0);
    const double left = Orthogonalize(squares, shares_.data());
    if (left > tolerance * squares && left > roundingShare * roundingShare * rawSquares)
        return KeepColumn(position, left);
    shares_.pop_back();
    redundant_.push_back({position, column_.scale, column_.centre + column_.origin,
                          std::sqrt(squares / static_cast<double>(rowCount_)), shares_});
}

void MAOrthonormalColumns::KeepColumn(std::size_t position, double left)
{
    shares_.back() = std::sqrt(left);
    Multiply(column_.values, 1.0 / shares_.back());
    std::swap(r_[Rank()], shares_);
    std::swap(work_[Rank()], column_.values);
    origins_.push_back(column_.origin / r_[Rank()].back());
    nonRedundant_.Set(position);
    scales_.push_back(column_.scale);
    centres_.push_back(column_.centre);
    kept_.push_back(position);
}

/// Returns the residual sum of squares. Repeats the step only where the first left less than half of the sum:
/// otherwise the rounding error of the first is as small relative to the residuals as to the column.
double MAOrthonormalColumns::Orthogonalize(double squares, double* shares)
{
    double left = squares;
    for (int pass = 0; pass < 2 && (pass == 0 || left < 0.5 * squares); ++pass) {
        const std::size_t start = hasIntercept_ ? 1 : 0;
        if (Rank() <= start)
            return left;
        for (std::size_t j = start; j < Rank(); ++j) {
            const double share = DotAbout(work_[j], origins_[j], column_.values, column_.origin);
            shares[j] += share;
            const auto subtract = [share, z = work_[j].data()](double x, std::size_t i) {
                return x - share * z[i];
            };
            const double mean = MeanAfter(column_.values, subtract);
            column_.origin = HasIntercept() ? mean : 0.0;
        }
        left = column_.Squares();
    }
    return left;
}

void MAOrthonormalColumns::AddDependent(const Values& weights)
{
    column_.scale = 1.0;
    Centre(weights);
    dependentCentre_ = column_.centre;
    unweighted_.assign(Rank(), 0.0);
    residualSum_ = Orthogonalize(column_.Squares(), unweighted_.data());
    StoreRows(column_.values);
}

void MAOrthonormalColumns::StoreRows(const Values& residuals)
{
    cells_.resize(rowCount_ * (Rank() + 1));
    double* cell = cells_.data();
    for (std::size_t i = 0; i < rowCount_; ++i) {
        for (std::size_t j = 0; j < Rank(); ++j)
            *cell++ = work_[j][i];
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
void MAOrthonormalColumns::DirectionOfCoefficient(std::size_t index, Values& direction) const
{
    direction.assign(Rank(), 0.0);
    direction[index] = 1.0;
    Solve(direction);
}

Values MAOrthonormalColumns::DirectionOf(const Values& weights) const
{
    Values direction(Rank());
    for (std::size_t j = 0; j < Rank(); ++j)
        direction[j] = weights[kept_[j]];
    Solve(direction);
    return direction;
}

/// Solves R'd = l. The columns are counted from their centres; the weight of the intercept is moved from
/// these centres to 0.
void MAOrthonormalColumns::Solve(Values& direction) const
{
    const double ofIntercept = hasIntercept_ && Rank() > 0 ? direction.front() : 0.0;
    for (std::size_t j = 0; j < Rank(); ++j)
        direction[j] = direction[j] / scales_[j] - ofIntercept * centres_[j];
    SolveTransposed(upper_, direction.data());
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
