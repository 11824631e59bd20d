#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// How much one study decides. What is not defined is missing.
struct MAStudyInfluence
{
    double residual = KXMV::Missing(); ///< externally studentized
    double dffits = KXMV::Missing();
    double cookDistance = KXMV::Missing();
    double covarianceRatio = KXMV::Missing();
    double tau2Deleted = KXMV::Missing();
    double qDeleted = KXMV::Missing();
    double hat = KXMV::Missing();
    double weight = KXMV::Missing(); ///< in percent of the sum
    double baujatX = KXMV::Missing();
    double baujatY = KXMV::Missing();
    std::vector<double> dfbetas; ///< one a parameter; of meta-regressions alone
    int rules = 0;               ///< sum of the `MAConst::INFLUENCERULE` that it meets
};

/// The deletion diagnostics of all studies, and the rules' cut-offs in their order.
struct MAInfluenceTable
{
    std::vector<MAStudyInfluence> studies;
    std::vector<double> cutoffs;
    bool isComplete = true; ///< whether there is a model without each study
};

/// What the deletion of study i changes, from which its diagnostics follow. A missing value, infinity or NaN
/// makes those missing that it enters.
struct MADeletionChange
{
    double effect;             ///< y
    double variance;           ///< v, within the study
    double fit;                ///< that of all studies, at study i
    double fitChange;          ///< the same less the fit without study i
    double fitVarianceDeleted; ///< variance of the fit without study i, at study i
    double tau2;               ///< 0 under fixed effects
    double tau2Deleted;        ///< likewise
    double cookDistance;       ///< the change of the coefficients in the metric of their covariance
    double covarianceRatio;    ///< determinant of their covariance without study i, over that with it
};

/// Diagnostics of Viechtbauer and Cheung (2010), Research Synthesis Methods 1, 112-125, and the axes of
/// Baujat et al. (2002), Statistics in Medicine 21, 2641-2652. Leverage `hat`, weight and Q are the caller's.
/// With ' for "without study i":
///     residual = (y - fit') / sqrt(v + tau²' + Var fit'),  DFFITS = (fit - fit') / sqrt(h (v + tau²')),
///     x = (y - fit)² / (v + tau²),                         y = (fit - fit')² / Var fit'.
void SetInfluence(const MADeletionChange& change, MAStudyInfluence& influence);

/// The cut-offs for `count` studies and `rank` coefficients, and the rules that each study meets:
///     |residual| > 1.96;  |DFFITS| > 3 sqrt(p / (k - p));  Cook's distance above the median of chi-square
///     with p degrees of freedom;  h > 3p / k;  |DFBETAS| > 1.
void ApplyInfluenceRules(std::size_t count, std::size_t rank, MAInfluenceTable& table);

} // namespace MA_NAMESPACE
