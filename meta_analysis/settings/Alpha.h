#pragma once

namespace MA_NAMESPACE {

/// The two-sided error probability of an interval with this confidence level, both fractions. Not checked:
/// a level outside 0 ... 1 gets the warning `MAStatusCode::CONFIDENCE_LEVEL_OUTSIDE` where it is used.
constexpr double AlphaOf(double confidenceLevel)
{
    return 1.0 - confidenceLevel;
}

} // namespace MA_NAMESPACE
