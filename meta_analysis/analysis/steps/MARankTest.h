#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/inference/MAKendall.h"

namespace MA_NAMESPACE {

/// The rank correlation test for small-study effects: Kendall's tau of the within-study variances v and the
/// standardised deviates (y - m) / sqrt(v - 1 / sum(1 / v)) of the effects from their fixed-effect mean m,
/// whose denominators are the standard errors of y - m. Missing where a deviate is not finite.
/// Begg and Mazumdar (1994), Biometrics 50, 1088-1101.
MARankCorrelation TestRanks(const MAEffects& studies);

} // namespace MA_NAMESPACE
