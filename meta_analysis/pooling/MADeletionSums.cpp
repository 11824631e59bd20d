#include "meta_analysis/pooling/MADeletionSums.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// Rows whose terms are added up before they are added to the total, so that rounding errors do not grow with
/// the number of rows.
constexpr std::size_t blockSize = 256;

/// How far from its centre a power series is used, relative to the smallest v + t.
constexpr double seriesReach = 1.0 / 64.0;

/// The lower triangle of u u', row after row.
void FormProducts(const double* row, std::size_t width, double* products)
{
    for (std::size_t i = 0; i < width; ++i)
        for (std::size_t j = 0; j <= i; ++j)
            *products++ = row[i] * row[j];
}

double SmallestOf(const std::vector<double>& values)
{
    return values.empty() ? 0.0 : *std::min_element(values.begin(), values.end());
}

/// How far a series reaches whose largest weight is 1 / variance: nowhere where so many powers of it
/// underflow, since the series would be cut.
double ReachOf(double variance, std::size_t powers)
{
    const bool underflows =
        std::pow(variance, -static_cast<double>(powers)) < std::numeric_limits<double>::min();
    return underflows ? -1.0 : seriesReach * variance;
}

} // namespace

void MAMomentSums::Clear()
{
    for (std::vector<double>& triangle : sums_)
        triangle.assign(TriangleSize(), 0.0);
}

MADeletionSums::MADeletionSums(MADeletionRows rows, const std::vector<double>& centres)
    : rows_(std::move(rows))
{
    const double smallest = SmallestOf(rows_.variances);
    for (const double centre : centres)
        centres_.push_back({centre, ReachOf(centre + smallest, terms), Sum<terms>(centre)});
}

/// The triangles of the first `count` powers at t.
template <std::size_t count>
std::array<std::vector<double>, count> MADeletionSums::Sum(double t) const
{
    const std::size_t size = MAMomentSums(rows_.Width()).TriangleSize();
    std::array<std::vector<double>, count> totals;
    totals.fill(std::vector<double>(size));
    std::array<std::vector<double>, count> block = totals;
    std::vector<double> products(size);
    for (std::size_t first = 0; first < rows_.Count(); first += blockSize) {
        for (std::vector<double>& sums : block)
            std::fill(sums.begin(), sums.end(), 0.0);
        for (std::size_t i = first; i < std::min(first + blockSize, rows_.Count()); ++i) {
            FormProducts(rows_.Row(i), rows_.Width(), products.data());
            const double weight = 1.0 / (rows_.variances[i] + t);
            for (std::vector<double>& sums : block)
                for (std::size_t j = 0; j < size; ++j)
                    sums[j] += products[j] *= weight;
        }
        for (std::size_t n = 0; n < count; ++n)
            for (std::size_t j = 0; j < size; ++j)
                totals[n][j] += block[n][j];
    }
    return totals;
}

void MADeletionSums::At(double t, MAMomentSums& sums)
{
    for (const Centre& centre : centres_) {
        const double x = t - centre.at;
        if (std::abs(x) <= centre.reach)
            return Expand(centre.series, x, sums);
    }
    const auto found = kept_.find(t);
    if (found != kept_.end()) {
        sums = found->second;
        return;
    }
    sums.Clear();
    const auto totals = Sum<MAMomentSums::powers>(t);
    for (std::size_t n = 0; n < MAMomentSums::powers; ++n)
        std::copy(totals[n].begin(), totals[n].end(), sums.Triangle(n));
    if (kept_.size() < mostKept)
        kept_.emplace(t, sums);
}

/// From the last term on, so that the small ones are added first.
void MADeletionSums::Expand(const Series& series, double x, MAMomentSums& sums)
{
    sums.Clear();
    for (std::size_t n = 0; n < MAMomentSums::powers; ++n) {
        double* const triangle = sums.Triangle(n);
        for (std::size_t m = terms - n; m-- > 0;) {
            // The series is nested: its coefficient ratio is -(n + m + 1) x / (m + 1) from term m to m + 1.
            const double ratio = -x * static_cast<double>(n + m + 1) / static_cast<double>(m + 1);
            const std::vector<double>& power = series[n + m];
            for (std::size_t j = 0; j < sums.TriangleSize(); ++j)
                triangle[j] = power[j] + ratio * triangle[j];
        }
    }
}

} // namespace MA_NAMESPACE
