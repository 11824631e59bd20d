#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <vector>

namespace MA_NAMESPACE {

/// What a bubble plot shows: the studies' effect sizes over one covariate, the studies' weights, and the line
/// of the meta-regression on that covariate alone with its confidence band.
///
/// Per-study vectors have one entry per record, missing for a record that is not usable: its effect size, a
/// positive variance and the covariate must be there. All but `leftOut` are empty unless the regression could
/// be fitted.
struct MABubbleRows
{
    std::vector<int> leftOut;         ///< records with an effect size and without the covariate
    int fitted = 0;                   ///< 1 when the regression could be fitted, else 0
    std::vector<double> coefficients; ///< intercept and slope, or the slope alone
    std::vector<double> x;            ///< covariate, less its mean when centred
    std::vector<double> predicted;    ///< on the line
    std::vector<double> weight;       ///< in percent of their sum
    std::vector<double> ciLower;      ///< confidence limits of the line, at the study
    std::vector<double> ciUpper;
    std::vector<double> curveX; ///< equidistant points from the smallest to the largest x
    std::vector<double> curveLower;
    std::vector<double> curveUpper;
    std::vector<double> curvePILower; ///< prediction limits at those points, missing for fixed effects
    std::vector<double> curvePIUpper;
    /// Of the slope, by the distribution of the regression settings; missing without degrees of freedom.
    double slopeStdError = KXMV::Missing();
    double slopeStatistic = KXMV::Missing();
    double slopeSig = KXMV::Missing();
    double slopeCILower = KXMV::Missing();
    double slopeCIUpper = KXMV::Missing();
};

} // namespace MA_NAMESPACE
