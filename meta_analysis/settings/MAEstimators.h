#pragma once

#include "meta_analysis/settings/MAConst.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace MA_NAMESPACE {

/// An estimator of the between-study variance.
struct MAEstimator
{
    const char* code; ///< by which regression settings name it
    MAConst::TAU2ESTIMATOR type;
    bool isIterative;   ///< found by iteration or search, and not in closed form
    bool hasLikelihood; ///< maximises a likelihood
};

/// Each estimator stands at the position that is its number.
inline constexpr MAEstimator allEstimators[] = {
    {"HE", MAConst::TAU2_HE, false, false}, {"HS", MAConst::TAU2_HS, false, false},
    {"DL", MAConst::TAU2_DL, false, false}, {"SJ", MAConst::TAU2_SJ, false, false},
    {"ML", MAConst::TAU2_ML, true, true},   {"REML", MAConst::TAU2_REML, true, true},
    {"EB", MAConst::TAU2_EB, true, false},
};
inline constexpr int estimatorCount = sizeof allEstimators / sizeof *allEstimators;

/// The number of a code that is none of the known ones.
inline constexpr int unknownEstimator = estimatorCount;

constexpr bool IsEstimator(MAConst::TAU2ESTIMATOR type)
{
    return type >= 0 && type < estimatorCount;
}

/// The number of the estimator with this code.
inline int EstimatorOfCode(const char* code)
{
    const auto found = std::find_if(std::begin(allEstimators), std::end(allEstimators),
                                    [&](const MAEstimator& e) { return std::strcmp(e.code, code) == 0; });
    return static_cast<int>(found - std::begin(allEstimators));
}

/// False for a number outside the enumeration, as `IsIterative` is.
constexpr bool HasLikelihood(MAConst::TAU2ESTIMATOR type)
{
    return IsEstimator(type) && allEstimators[type].hasLikelihood;
}

constexpr bool IsIterative(MAConst::TAU2ESTIMATOR type)
{
    return IsEstimator(type) && allEstimators[type].isIterative;
}

} // namespace MA_NAMESPACE
