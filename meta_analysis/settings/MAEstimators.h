#pragma once

#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace MA_NAMESPACE {

/// How an estimator finds the between-study variance.
enum class MATau2Method
{
    ClosedForm,
    FullLikelihood,       ///< the maximum of the likelihood of the data
    RestrictedLikelihood, ///< the maximum of the likelihood of their residuals
    QRoot                 ///< where the generalized Q statistic equals its expectation
};

/// An estimator of the between-study variance.
struct MAEstimator
{
    const char* code; ///< by which regression settings name it
    MAConst::TAU2ESTIMATOR type;
    MATau2Method method;
};

/// Each estimator stands at the position that is its number, which the assertion below checks.
inline constexpr MAEstimator allEstimators[] = {
    {"HE", MAConst::TAU2_HE, MATau2Method::ClosedForm},
    {"HS", MAConst::TAU2_HS, MATau2Method::ClosedForm},
    {"DL", MAConst::TAU2_DL, MATau2Method::ClosedForm},
    {"SJ", MAConst::TAU2_SJ, MATau2Method::ClosedForm},
    {"ML", MAConst::TAU2_ML, MATau2Method::FullLikelihood},
    {"REML", MAConst::TAU2_REML, MATau2Method::RestrictedLikelihood},
    {"EB", MAConst::TAU2_EB, MATau2Method::QRoot},
};
inline constexpr int estimatorCount = sizeof allEstimators / sizeof *allEstimators;

/// Stands for a code that is none of the known ones; outside the enumeration.
inline constexpr auto unknownEstimator = static_cast<MAConst::TAU2ESTIMATOR>(estimatorCount);

/// Whether the number is one of the enumeration. The compiler warns of an enumerator that is missing here.
constexpr bool IsEstimator(MAConst::TAU2ESTIMATOR type)
{
    switch (type) {
    case MAConst::TAU2_HE:
    case MAConst::TAU2_HS:
    case MAConst::TAU2_DL:
    case MAConst::TAU2_SJ:
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return true;
    }
    return false;
}

constexpr bool EachEstimatorHasItsRow()
{
    for (int i = 0; i < estimatorCount; ++i)
        if (allEstimators[i].type != i || !IsEstimator(allEstimators[i].type))
            return false;
    return !IsEstimator(unknownEstimator);
}
static_assert(EachEstimatorHasItsRow());

/// The estimator with this code; `unknownEstimator` when there is none.
inline MAConst::TAU2ESTIMATOR EstimatorOfCode(const char* code)
{
    const auto found = std::find_if(std::begin(allEstimators), std::end(allEstimators),
                                    [&](const MAEstimator& e) { return std::strcmp(e.code, code) == 0; });
    return found == std::end(allEstimators) ? unknownEstimator : found->type;
}

/// The estimator that the settings name by its code.
inline MAConst::TAU2ESTIMATOR EstimatorOf(const MARegSettings& settings)
{
    return EstimatorOfCode(settings.GetEstTauType());
}

/// A number outside the enumeration estimates nothing and counts as closed.
constexpr MATau2Method MethodOf(MAConst::TAU2ESTIMATOR type)
{
    return IsEstimator(type) ? allEstimators[type].method : MATau2Method::ClosedForm;
}

/// Whether the estimator maximises a likelihood.
constexpr bool HasLikelihood(MAConst::TAU2ESTIMATOR type)
{
    const MATau2Method method = MethodOf(type);
    return method == MATau2Method::FullLikelihood || method == MATau2Method::RestrictedLikelihood;
}

/// Whether the estimator iterates or searches.
constexpr bool IsIterative(MAConst::TAU2ESTIMATOR type)
{
    return MethodOf(type) != MATau2Method::ClosedForm;
}

} // namespace MA_NAMESPACE
