#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace MA_NAMESPACE {

/// Sum of the logarithms of `count` positive numbers, `number(i)` each. Where they lie within 1e-35 and 1e35,
/// `areModerate`, one logarithm is taken for eight of them, whose product stays within range.
template <class Number>
double SumOfLogs(std::size_t count, bool areModerate, Number number)
{
    const std::size_t factors = areModerate ? 8 : 1;
    double sum = 0.0;
    for (std::size_t first = 0; first < count; first += factors) {
        double product = 1.0;
        for (std::size_t i = first; i < std::min(first + factors, count); ++i)
            product *= number(i);
        sum += std::log(product);
    }
    return sum;
}

} // namespace MA_NAMESPACE
