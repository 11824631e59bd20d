#pragma once

#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/MARegResults.h"

namespace MA_NAMESPACE {

// What the residuals of a meta-regression tell of the heterogeneity that its predictors leave.

/// Scale of the covariance after Knapp and Hartung. Without residual degrees of freedom there is no factor,
/// and the truncated one is 1.
double KnappHartungScale(const MARegFit& fit, bool truncated);

/// The typical within-study variance s² = (k - p) / T, with T the weighted residual trace at tau² = 0,
/// against which I² and H² set tau² (Higgins and Thompson 2002, Statistics in Medicine 21, 1539-1558).
double TypicalVariance(MARegressionCurve& curve, double meanVariance);

/// Of random effects, by the curve of the design; Q is that at tau² = 0.
MAResidualHeterogeneity ResidualHeterogeneity(double tau2, MARegressionCurve& curve, double meanVariance);
/// Of the fixed-effect fit.
MAResidualHeterogeneity ResidualHeterogeneity(const MARegFit& fit);

/// R²: the part of the between-study variance without predictors that these take away; 0 when they do not.
double ExplainedPart(double tau2, const MATau2Estimate& without, double meanVariance);

} // namespace MA_NAMESPACE
