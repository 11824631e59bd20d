#pragma once

#include "meta_analysis/settings/MAConst.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace MA_NAMESPACE {

/// The codes by which the regression settings name the between-study variance estimators; each stands at the
/// position that is its number in `MAConst::TAU2ESTIMATOR`.
inline constexpr const char* estimatorCodes[] = {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"};
inline constexpr int estimatorCodeCount = sizeof estimatorCodes / sizeof *estimatorCodes;

/// The number of a code that is none of the known ones.
inline constexpr int unknownEstimator = estimatorCodeCount;

/// The number of the estimator with this code.
inline int EstimatorOfCode(const char* code)
{
    const auto found = std::find_if(std::begin(estimatorCodes), std::end(estimatorCodes),
                                    [&](const char* known) { return std::strcmp(known, code) == 0; });
    return static_cast<int>(found - std::begin(estimatorCodes));
}

/// Whether an estimator maximises a likelihood.
inline bool HasLikelihood(MAConst::TAU2ESTIMATOR estimator)
{
    return estimator == MAConst::TAU2_ML || estimator == MAConst::TAU2_REML;
}

/// Whether an estimator is found by iteration or search, and not in closed form.
inline bool IsIterative(MAConst::TAU2ESTIMATOR estimator)
{
    return HasLikelihood(estimator) || estimator == MAConst::TAU2_EB;
}

} // namespace MA_NAMESPACE
