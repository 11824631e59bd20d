#pragma once

#include "meta_analysis/settings/MAConst.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace MA_NAMESPACE {

/// An estimator of the between-study variance.
struct MAEstimator
{
    MAConst::TAU2ESTIMATOR type;
    const char* code;   ///< by which regression settings name it
    bool isIterative;   ///< found by iteration or search, and not in closed form
    bool hasLikelihood; ///< maximises a likelihood
};

/// Each estimator stands at the position that is its number.
inline constexpr MAEstimator estimators[] = {
    {MAConst::TAU2_HE, "HE", false, false}, {MAConst::TAU2_HS, "HS", false, false},
    {MAConst::TAU2_DL, "DL", false, false}, {MAConst::TAU2_SJ, "SJ", false, false},
    {MAConst::TAU2_ML, "ML", true, true},   {MAConst::TAU2_REML, "REML", true, true},
    {MAConst::TAU2_EB, "EB", true, false},
};
inline constexpr int estimatorCount = sizeof estimators / sizeof *estimators;

/// The number of a code that is none of the known ones.
inline constexpr int unknownEstimator = estimatorCount;

constexpr bool IsEstimator(MAConst::TAU2ESTIMATOR type)
{
    return type >= 0 && type < estimatorCount;
}

/// The number of the estimator with this code.
inline int EstimatorOfCode(const char* code)
{
    const auto found = std::find_if(std::begin(estimators), std::end(estimators),
                                    [&](const MAEstimator& e) { return std::strcmp(e.code, code) == 0; });
    return static_cast<int>(found - std::begin(estimators));
}

/// False for a number outside the enumeration, as `IsIterative` is.
constexpr bool HasLikelihood(MAConst::TAU2ESTIMATOR type)
{
    return IsEstimator(type) && estimators[type].hasLikelihood;
}

constexpr bool IsIterative(MAConst::TAU2ESTIMATOR type)
{
    return IsEstimator(type) && estimators[type].isIterative;
}

} // namespace MA_NAMESPACE
