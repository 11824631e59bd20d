#include "meta_analysis/pooling/MADeletedModels.h"

#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/platform/common/SumsWithoutEach.h"
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

MAUnweightedSums UnweightedSums(const MAEffects& studies, double origin)
{
    MAUnweightedSums sums;
    for (std::size_t i = 0; i < studies.Count(); ++i)
        sums.Add(studies.effectSizes[i] - origin, studies.variances[i]);
    return sums;
}

} // namespace

bool FollowsFromSharedSums(const MARandomEffectsChoice& choice)
{
    return IsEstimator(choice.estimator) &&
           (!IsIterative(choice.estimator) || choice.search == MAConst::TAU2_SEARCH_GLOBAL);
}

MADeletedModels::MADeletedModels(const MAEffects& studies, const MARandomEffectsChoice& choice)
    : choice_(choice),
      count_(studies.Count()),
      tau2_(EstimateTau2(studies, {choice.estimator, choice.limits, choice.search}).tau2),
      mean_(WeightedMean(studies, tau2_).Mean())
{
    if (count_ >= fewestStudies && AreUsable(CurveOf(studies, choice.estimator).Bounds()) &&
        std::isfinite(mean_))
        curve_.emplace(RowsOf(studies, mean_), Prepare(studies), LikelihoodOf(choice.estimator));
}

/// Sums what the estimator takes besides the curve. Returns the tau² near which it looks at the curve.
std::vector<double> MADeletedModels::Prepare(const MAEffects& studies)
{
    const bool isSidikJonkman = choice_.estimator == MAConst::TAU2_SJ;
    if (choice_.estimator != MAConst::TAU2_HE && !isSidikJonkman)
        return {tau2_};
    const MAUnweightedSums all = UnweightedSums(studies, mean_);
    const double origin = mean_ + all.effects.mean;
    others_ = SumsWithoutEach(count_, MAUnweightedSums(), [&](std::size_t i, MAUnweightedSums& sums) {
        sums.Add(studies.effectSizes[i] - origin, studies.variances[i]);
    });
    return isSidikJonkman ? std::vector<double>{tau2_, all.CrudeTau2()} : std::vector<double>{tau2_};
}

std::optional<MAPooledModel> MADeletedModels::Without(std::size_t i)
{
    if (!curve_.has_value() || !(others_.empty() || others_[i].effects.AreExact()))
        return std::nullopt;
    curve_->Delete(i);
    const MADeletionFit fixed = curve_->FitAt(0.0);
    if (!fixed.isExact)
        return std::nullopt;
    const MATau2Estimate tau2 = Tau2Without(i, fixed);
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
MATau2Estimate MADeletedModels::Tau2Without(std::size_t i, const MADeletionFit& fixed)
{
    const double left = static_cast<double>(count_) - 1.0;
    switch (choice_.estimator) {
    case MAConst::TAU2_HE:
        return ClosedFormTau2(others_[i].HedgesTau2());
    case MAConst::TAU2_HS:
        return ClosedFormTau2((fixed.residualSum - left) / fixed.weightSum);
    case MAConst::TAU2_DL:
        return ClosedFormTau2((fixed.residualSum - (left - 1.0)) / fixed.trace);
    case MAConst::TAU2_SJ:
        return ClosedFormTau2(SidikJonkmanTau2(others_[i]));
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return EstimateOf(SolveTau2(*curve_, choice_.estimator, tau2_ / curve_->Unit()), curve_->Unit());
    }
    return FailedTau2(KXStatus(MAStatusCode::TAU2_FAILED));
}

/// sum(r² crude / (v + crude)) / (k - 1) with the residuals r about the mean of these weights.
double MADeletedModels::SidikJonkmanTau2(const MAUnweightedSums& others)
{
    const double crude = others.CrudeTau2();
    return crude * curve_->FitAt(crude).residualSum / (others.Count() - 1.0);
}

} // namespace MA_NAMESPACE
