#pragma once

#include "meta_analysis/inference/MAWeightedMean.h"

namespace MA_NAMESPACE {

// Estimates of tau² from the weights 1 / v of k studies, before they are truncated at 0.

/// (Q - k) / sum(1 / v) with the fixed-effect Q (Hunter and Schmidt 1990, Methods of Meta-Analysis).
template <class Effects>
MANumberOf<Effects> HunterSchmidtTau2(const Effects& studies, const MANumberOf<Effects>& k)
{
    using Number = MANumberOf<Effects>;
    const MAWeightedMeanOf<Number> fixed = WeightedMean(studies, Number{});
    const Number q = ResidualSum(studies, fixed.Mean(), Number{});
    return (q - k) / fixed.weightSum;
}

/// (Q - (k - 1)) / c with c = sum(w) - sum(w²) / sum(w), w = 1 / v, and 0 when c is 0.
/// DerSimonian and Laird (1986), Controlled Clinical Trials 7, 177-188.
template <class Effects>
MANumberOf<Effects> DerSimonianLairdTau2(const Effects& studies, const MANumberOf<Effects>& k)
{
    using Number = MANumberOf<Effects>;
    const MAWeightedMeanOf<Number> fixed = WeightedMean(studies, Number{});
    const Number q = CochranQ(studies, fixed.Mean());
    const Number c = PairSum(studies, fixed.weightSum);
    return c == Number{} ? Number{} : (q - (k - 1.0)) / c;
}

} // namespace MA_NAMESPACE
