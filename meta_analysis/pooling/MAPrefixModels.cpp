#include "meta_analysis/pooling/MAPrefixModels.h"

#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/pooling/MATau2Steps.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// A plain fit of fewer is as fast, and keeps all its bits.
constexpr std::size_t fewestStudies = 256;

/// The mean and its test alone.
MAWantedResults MeanAlone()
{
    MAWantedResults wanted;
    wanted.homogeneity = false;
    wanted.heterogeneity = false;
    wanted.prediction = false;
    return wanted;
}

/// Scoring that reaches its limit wanders as rounding takes it, so that other sums end elsewhere.
bool IsSettled(const MATau2Estimate& tau2)
{
    return !tau2.status.IsError() && tau2.convergence != MAConst::TAU2_ITERATION_LIMIT;
}

} // namespace

MAPrefixModels::MAPrefixModels(const MAEffects& studies, const MARandomEffectsChoice& choice)
    : curve_(studies, LikelihoodOf(choice.estimator)),
      choice_(choice),
      wanted_(MeanAlone()),
      quantiles_(choice.alpha)
{}

std::optional<MAPooledModel> MAPrefixModels::Next()
{
    AddUnweighted(curve_.Sums().Count());
    curve_.Append();
    const std::size_t count = curve_.Sums().Count();
    if (count < fewestStudies)
        return std::nullopt;
    const MATau2Estimate tau2 = Tau2();
    const MAPrefixCurve::Fit fit = curve_.FitAt(tau2.tau2 / curve_.Unit());
    if (!curve_.IsExact() || !IsSettled(tau2))
        return std::nullopt;
    last_ = tau2.tau2;
    const double mean = curve_.Sums().Origin() + fit.mean * std::sqrt(curve_.Unit());
    return RandomEffectsModel({count, tau2, mean, fit.sums.w1 / curve_.Unit(), fit.sums.wr2, 0.0, 0.0},
                              choice_, wanted_, quantiles_);
}

/// The sum of squares about the running mean loses no digits (Welford 1962, Technometrics 4, 419-420).
void MAPrefixModels::AddUnweighted(std::size_t study)
{
    const double effect = curve_.Sums().Effect(study);
    const double distance = effect - mean_;
    mean_ += distance / static_cast<double>(study + 1);
    residualSum_ += distance * (effect - mean_);
    varianceSum_ += curve_.Sums().Variance(study);
}

/// The formulas of `EstimateTau2`.
MATau2Estimate MAPrefixModels::Tau2()
{
    const auto count = static_cast<double>(curve_.Sums().Count());
    switch (choice_.estimator) {
    case MAConst::TAU2_HE:
        return ClosedFormTau2(HedgesTau2());
    case MAConst::TAU2_SJ:
        return ClosedFormTau2(SidikJonkmanTau2());
    case MAConst::TAU2_DL: {
        const MATau2StepSums fixed = curve_.FitAt(0.0).sums;
        return ClosedFormTau2(curve_.Unit() * (fixed.wr2 - (count - 1.0)) / fixed.traceP);
    }
    case MAConst::TAU2_HS: {
        const MATau2StepSums fixed = curve_.FitAt(0.0).sums;
        return ClosedFormTau2(curve_.Unit() * (fixed.wr2 - count) / fixed.w1);
    }
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return IteratedTau2();
    }
    return FailedTau2(KXStatus(MAStatusCode::TAU2_FAILED));
}

/// A search that ends at what is not finite leaves the curve inexact, and so the model to a plain fit.
MATau2Estimate MAPrefixModels::IteratedTau2()
{
    const double unit = curve_.Unit();
    if (choice_.search == MAConst::TAU2_SEARCH_GLOBAL)
        return EstimateOf(SolveTau2(curve_, choice_.estimator, last_ / unit), unit);
    return ScoreTau2(TruncateAtZero(HedgesTau2()), {choice_.estimator, choice_.limits, choice_.search}, 1.0,
                     [&](double tau2) { return curve_.FitAt(tau2 / unit).sums; });
}

double MAPrefixModels::HedgesTau2() const
{
    const auto count = static_cast<double>(curve_.Sums().Count());
    return curve_.Unit() * (residualSum_ / (count - 1.0) - varianceSum_ / count);
}

double MAPrefixModels::SidikJonkmanTau2()
{
    const auto count = static_cast<double>(curve_.Sums().Count());
    const double crude = residualSum_ / count;
    return curve_.Unit() * crude * curve_.FitAt(crude).sums.wr2 / (count - 1.0);
}

} // namespace MA_NAMESPACE
