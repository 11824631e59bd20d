#include "meta_analysis/inference/MAKendall.h"

#include "meta_analysis/inference/MATestPValues.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

namespace MA_NAMESPACE {

namespace {

constexpr std::size_t fewestForNormal = 50;

using Pair = std::pair<double, double>;

/// Sums over the runs of t equal values. Doubles hold them exactly up to 2e5 values.
struct Ties
{
    double pairs = 0.0;   ///< t (t - 1)
    double triples = 0.0; ///< t (t - 1) (t - 2)
    double spread = 0.0;  ///< t (t - 1) (2 t + 5)

    void Add(double t)
    {
        pairs += t * (t - 1.0);
        triples += t * (t - 1.0) * (t - 2.0);
        spread += t * (t - 1.0) * (2.0 * t + 5.0);
    }
};

/// The ties of sorted values; `areTied` tells of two neighbours.
template <class Value, class AreTied>
Ties TiesOf(const std::vector<Value>& sorted, AreTied areTied)
{
    Ties ties;
    for (std::size_t i = 0; i < sorted.size();) {
        const std::size_t first = i++;
        while (i < sorted.size() && areTied(sorted[first], sorted[i]))
            ++i;
        ties.Add(static_cast<double>(i - first));
    }
    return ties;
}

/// Sorts the values by merging, and returns how many pairs of them stood in descending order: the merge takes
/// a value of the right half before all that are left of the left one. Knight (1966), Journal of the American
/// Statistical Association 61, 436-439.
double SortCountingInversions(std::span<double> values, std::span<double> buffer)
{
    const std::size_t count = values.size();
    if (count < 2)
        return 0.0;
    const std::size_t middle = count / 2;
    double inversions = SortCountingInversions(values.first(middle), buffer) +
                        SortCountingInversions(values.subspan(middle), buffer);
    std::size_t left = 0;
    std::size_t right = middle;
    for (double& merged : buffer.first(count)) {
        const bool takesRight = left == middle || (right < count && values[right] < values[left]);
        if (takesRight)
            inversions += static_cast<double>(middle - left);
        merged = values[takesRight ? right++ : left++];
    }
    std::copy_n(buffer.begin(), count, values.begin());
    return inversions;
}

/// The probability of at most `limit` inversions in a random order of `count` values. Their generating
/// function is the product of (1 + x + ... + x^(n - 1)) / n over n up to `count`.
double ProbabilityOfInversions(std::size_t count, std::size_t limit)
{
    std::vector<double> probabilities(limit + 1, 0.0);
    probabilities[0] = 1.0;
    std::vector<double> sums(limit + 1);
    for (std::size_t n = 2; n <= count; ++n) {
        std::partial_sum(probabilities.begin(), probabilities.end(), sums.begin());
        for (std::size_t q = 0; q <= limit; ++q)
            probabilities[q] = (sums[q] - (q >= n ? sums[q - n] : 0.0)) / static_cast<double>(n);
    }
    return std::accumulate(probabilities.begin(), probabilities.end(), 0.0);
}

/// The variance of C - D in random orders of n pairs with these ties.
double VarianceOfDifference(double n, const Ties& x, const Ties& y)
{
    const double withoutPairs = (n * (n - 1.0) * (2.0 * n + 5.0) - x.spread - y.spread) / 18.0;
    const double ofPairs = x.pairs * y.pairs / (2.0 * n * (n - 1.0));
    const double triples = x.triples * y.triples; // none for n = 2
    return withoutPairs + ofPairs + (triples > 0.0 ? triples / (9.0 * n * (n - 1.0) * (n - 2.0)) : 0.0);
}

/// The pairs in ascending order of x, equal ones in that of y; empty when a value is not a number.
std::vector<Pair> SortedPairs(std::span<const double> x, std::span<const double> y)
{
    std::vector<Pair> pairs;
    pairs.reserve(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (std::isnan(x[i]) || std::isnan(y[i]))
            return {};
        pairs.emplace_back(x[i], y[i]);
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

} // namespace

MARankCorrelation CorrelateRanks(std::span<const double> x, std::span<const double> y)
{
    const std::vector<Pair> pairs = SortedPairs(x, y);
    MARankCorrelation result;
    const auto n = static_cast<double>(pairs.size());
    const Ties both = TiesOf(pairs, std::equal_to<>());
    const Ties ofX = TiesOf(pairs, [](const Pair& a, const Pair& b) { return a.first == b.first; });
    std::vector<double> second(pairs.size());
    std::transform(pairs.begin(), pairs.end(), second.begin(), [](const Pair& pair) { return pair.second; });
    std::vector<double> buffer(second.size());
    const double discordant = SortCountingInversions(second, buffer);
    const Ties ofY = TiesOf(second, std::equal_to<>());

    const double all = n * (n - 1.0);
    if (!(all > ofX.pairs && all > ofY.pairs))
        return result;
    const double difference = (all - ofX.pairs - ofY.pairs + both.pairs) / 2.0 - 2.0 * discordant;
    result.tau = 2.0 * difference / std::sqrt((all - ofX.pairs) * (all - ofY.pairs));
    result.pValue = TwoSidedNormalPValue(difference / std::sqrt(VarianceOfDifference(n, ofX, ofY))).value;
    if (ofX.pairs + ofY.pairs == 0.0 && pairs.size() < fewestForNormal) {
        const double rarer = std::min(discordant, all / 2.0 - discordant);
        result.exactPValue =
            std::min(1.0, 2.0 * ProbabilityOfInversions(pairs.size(), static_cast<std::size_t>(rarer)));
    }
    return result;
}

} // namespace MA_NAMESPACE
