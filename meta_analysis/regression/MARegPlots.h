#pragma once

#include <vector>

namespace MA_NAMESPACE {

/// A study in the forest plot of a meta-regression, on the scale of the effect sizes.
struct MARegForestRow
{
    int record;    ///< its number, from 0
    double effect; ///< with its own interval, effect ∓ z √variance
    double ciLower;
    double ciUpper;
    double weight; ///< of the fit
    double fit;    ///< x'b, with its confidence limits
    double fitLower;
    double fitUpper;
};

/// Bubble plot of a covariate of a meta-regression.
///
/// A study is a bubble at its covariate and its effect size, with its weight in the fit. The line is the mean
/// prediction for the studies if all had the covariate's value, each keeping its other predictors (predictive
/// margin): x̄(v)'b, with x̄(v) the mean row of the design. Without interactions that is the prediction at the
/// means of the other predictors. The band has the confidence limits of the line, by the fit itself; they are
/// missing as those of `MAPredictedEffect`. Lane and Nelder (1982), Biometrics 38, 613-621.
struct MARegBubblePlot
{
    std::vector<double> studyX; ///< one entry per study
    std::vector<double> studyEffects;
    std::vector<double> studyWeights;
    std::vector<double> lineX; ///< from the smallest to the largest value of the covariate, evenly spaced
    std::vector<double> lineEffects;
    std::vector<double> lineLower;
    std::vector<double> lineUpper;
    std::vector<double> linePILower; ///< prediction limits of a new study's true effect
    std::vector<double> linePIUpper;
};

} // namespace MA_NAMESPACE
