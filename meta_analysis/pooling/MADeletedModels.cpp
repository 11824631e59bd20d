#include "meta_analysis/pooling/MADeletedModels.h"

#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
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

bool FollowsFromSharedSums(const MARandomEffectsChoice& choice)
{
    const bool isSearched = IsIterative(choice.estimator) && choice.search == MAConst::TAU2_SEARCH_GLOBAL;
    return isSearched || choice.estimator == MAConst::TAU2_DL || choice.estimator == MAConst::TAU2_HS;
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
    const MADeletionFit fixed = curve_->FitAt(0.0);
    if (!fixed.isExact)
        return std::nullopt;
    const MATau2Estimate tau2 = Tau2Of(fixed);
    const bool isProved =
        tau2.convergence == MAConst::TAU2_GLOBAL_OPTIMUM || tau2.convergence == MAConst::TAU2_CLOSED_FORM;
    const MADeletionFit fit = curve_->FitAt(tau2.tau2);
    if (!curve_->IsExact() || !isProved || !fit.isExact)
        return std::nullopt;
    return RandomEffectsModel({count_ - 1, tau2, mean_ + fit.fitted.front(), fit.weightSum, fit.residualSum,
                               fixed.residualSum, fixed.trace},
                              choice_);
}

/// The formulas of `EstimateTau2`, from the fixed-effect fit of the others.
MATau2Estimate MADeletedModels::Tau2Of(const MADeletionFit& fixed)
{
    const double left = static_cast<double>(count_) - 1.0;
    if (choice_.estimator == MAConst::TAU2_DL)
        return ClosedFormTau2((fixed.residualSum - (left - 1.0)) / fixed.trace);
    if (choice_.estimator == MAConst::TAU2_HS)
        return ClosedFormTau2((fixed.residualSum - left) / fixed.weightSum);
    return EstimateOf(SolveTau2(*curve_, choice_.estimator, tau2_ / curve_->Unit()), curve_->Unit());
}

} // namespace MA_NAMESPACE
