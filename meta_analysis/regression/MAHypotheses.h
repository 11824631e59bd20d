#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/MARegResults.h"

#include <vector>

namespace MA_NAMESPACE {

// Tests of linear combinations of the coefficients of a fitted regression, whose covariance is V = scale M.

/// Tested hypotheses; an error leaves no results.
struct MATestedHypotheses
{
    KXStatus status;
    MAHypothesisTests tests;
};

/// Tests the hypotheses of the fit's settings, one by one and together. A missing scale leaves the estimates.
/// Errors: `HYPOTHESIS_UNUSABLE`, `HYPOTHESIS_ON_REDUNDANT`, `HYPOTHESES_CONTRADICT`.
MATestedHypotheses TestHypotheses(const MARegFit& fit, double scale, bool useStudentT);

/// Tests the columns of each model effect together, by F or Wald's chi-square.
std::vector<MAModelTest> TestEffects(const MARegFit& fit, double scale, bool isF);

} // namespace MA_NAMESPACE
