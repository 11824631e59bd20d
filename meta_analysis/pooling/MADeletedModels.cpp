#include "meta_analysis/pooling/MADeletedModels.h"

#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/pooling/MATau2Search.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

constexpr std::size_t fewestStudies = 3; // of which two are left

/// One coordinate, the constant, and effects counted from the pooled one.
MADeletionRows RowsOf(const MAEffects& studies, double mean)
{
    MADeletionRows rows;
    rows.rank = 1;
    rows.variances.assign(studies.variances.begin(), studies.variances.end());
    rows.cells.reserve(studies.Count() * rows.Width());
    for (const double effect : studies.effectSizes)
        rows.cells.insert(rows.cells.end(), {1.0, effect - mean, 1.0});
    return rows;
}

} // namespace

bool IsSearched(const MARandomEffectsChoice& choice)
{
    return IsIterative(choice.estimator) && choice.search == MAConst::TAU2_SEARCH_GLOBAL;
}

MADeletedModels::MADeletedModels(const MAEffects& studies, const MARandomEffectsChoice& choice)
    : choice_(choice),
      count_(studies.Count()),
      tau2_(EstimateTau2(studies, {choice.estimator, choice.limits, choice.search}).tau2),
      mean_(WeightedMean(studies, tau2_).Mean())
{
    if (count_ >= fewestStudies && AreUsable(CurveOf(studies, choice.estimator).Bounds()) &&
        std::isfinite(mean_))
        curve_.emplace(RowsOf(studies, mean_), tau2_, LikelihoodOf(choice.estimator));
}

std::optional<MAPooledModel> MADeletedModels::Without(std::size_t i)
{
    if (!curve_.has_value())
        return std::nullopt;
    curve_->Delete(i);
    const MATau2Estimate tau2 =
        EstimateOf(SolveTau2(*curve_, choice_.estimator, tau2_ / curve_->Unit()), curve_->Unit());
    if (!curve_->IsExact() || tau2.convergence != MAConst::TAU2_GLOBAL_OPTIMUM)
        return std::nullopt;
    const MADeletionFit fit = curve_->FitAt(tau2.tau2);
    const MADeletionFit fixed = curve_->FitAt(0.0);
    if (!fit.isExact || !fixed.isExact)
        return std::nullopt;
    return RandomEffectsModel({count_ - 1, tau2, mean_ + fit.fitted.front(), fit.weightSum, fit.residualSum,
                               fixed.residualSum, fixed.trace},
                              choice_);
}

} // namespace MA_NAMESPACE
