#include "meta_analysis/pooling/MAGroupedCurve.h"

#include <algorithm>

namespace MA_NAMESPACE {

/// The unit is the smallest of the groups' units, which are powers of 4, so that no conversion rounds.
MAGroupedCurve::MAGroupedCurve(std::span<const MAEffects> groups, MAConst::TAU2ESTIMATOR estimator)
{
    groups_.reserve(groups.size());
    for (const MAEffects& group : groups)
        groups_.push_back(CurveOf(group, estimator));
    if (groups_.empty())
        return;
    const auto byUnit = [](const MAPooledCurve& a, const MAPooledCurve& b) { return a.Unit() < b.Unit(); };
    unit_ = std::min_element(groups_.begin(), groups_.end(), byUnit)->Unit();
    bounds_.minVariance = groups_.front().Bounds().minVariance * (groups_.front().Unit() / unit_);
    for (const MAPooledCurve& group : groups_) {
        const double ratio = group.Unit() / unit_;
        bounds_.minVariance = std::min(bounds_.minVariance, group.Bounds().minVariance * ratio);
        bounds_.maxVariance = std::max(bounds_.maxVariance, group.Bounds().maxVariance * ratio);
        bounds_.residualSum += group.Bounds().residualSum * ratio;
        bounds_.traceSize += group.Bounds().traceSize;
        bounds_.residualDf += group.Bounds().residualDf;
    }
}

MALikelihoodTerms MAGroupedCurve::At(double t)
{
    MALikelihoodTerms total = {};
    for (MAPooledCurve& group : groups_) {
        const double ratio = unit_ / group.Unit();
        const MALikelihoodTerms terms = group.At(t * ratio);
        total.fit += terms.fit * ratio;
        total.fitSlope += terms.fitSlope * ratio * ratio;
        total.trace += terms.trace * ratio;
        total.traceSlope += terms.traceSlope * ratio * ratio;
    }
    return total;
}

MAGeneralizedQ MAGroupedCurve::QAt(double t)
{
    MAGeneralizedQ total = {};
    for (MAPooledCurve& group : groups_) {
        const double ratio = unit_ / group.Unit();
        const MAGeneralizedQ q = group.QAt(t * ratio);
        total.value += q.value;
        total.slope += q.slope * ratio;
    }
    return total;
}

double MAGroupedCurve::LogLikelihood(double t)
{
    double sum = 0.0;
    for (MAPooledCurve& group : groups_)
        sum += group.LogLikelihood(t * (unit_ / group.Unit()));
    return sum;
}

} // namespace MA_NAMESPACE
