#include "meta_analysis/analysis/studies/MADoubtfulStdDevs.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

constexpr double largestDifference = 3.0;
constexpr double smallestFraction = 0.2;

/// The logarithm of the geometric mean of a study's standard deviations.
double LogStdDevOf(const MAMeans& study)
{
    return (std::log(study.st) + std::log(study.sc)) / 2.0;
}

/// The median of all values but one of them.
double MedianWithout(const std::vector<double>& ascending, double value)
{
    const auto left = static_cast<std::size_t>(std::lower_bound(ascending.begin(), ascending.end(), value) -
                                               ascending.begin());
    const auto other = [&](std::size_t i) { return ascending[i < left ? i : i + 1]; };
    const std::size_t count = ascending.size() - 1;
    return (other((count - 1) / 2) + other(count / 2)) / 2.0;
}

} // namespace

std::vector<std::size_t> DoubtfulStdDevs(const std::vector<MAMeans>& studies)
{
    std::vector<std::size_t> doubtful;
    if (studies.size() < 2)
        return doubtful;
    std::vector<double> ascending;
    ascending.reserve(studies.size());
    for (const MAMeans& study : studies)
        ascending.push_back(LogStdDevOf(study));
    std::sort(ascending.begin(), ascending.end());
    for (std::size_t i = 0; i < studies.size(); ++i) {
        const double own = LogStdDevOf(studies[i]);
        if (std::abs(studies[i].CohensD()) > largestDifference &&
            own <= MedianWithout(ascending, own) + std::log(smallestFraction))
            doubtful.push_back(i);
    }
    return doubtful;
}

} // namespace MA_NAMESPACE
