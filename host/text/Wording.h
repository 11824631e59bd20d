#pragma once

#include "meta_analysis/settings/MAModelSettings.h"

#include <cstddef>
#include <string>

namespace host {

/// What people call the effect size of an analysis.
struct EffectWording
{
    std::string name;   ///< "odds ratio"
    std::string symbol; ///< "OR"
    bool isRatio;       ///< analysed on the log scale

    /// The symbol on the scale of the analysis: "log OR", or the symbol itself.
    std::string AnalysisSymbol() const { return isRatio ? "log " + symbol : symbol; }
};

EffectWording WordingOfEffect(const MA_NAMESPACE::MAModelSettings& settings);

/// The pooling model with its method: "random-effects model (restricted maximum likelihood)".
std::string WordingOfModel(const MA_NAMESPACE::MAModelSettings& settings);

/// Whether the fixed-effect model pools the tables themselves, after Mantel and Haenszel or Peto.
bool PoolsTables(const MA_NAMESPACE::MAModelSettings& settings);

/// The symbol of the pooled effect's test statistic.
std::string WordingOfStatistic(const MA_NAMESPACE::MAModelSettings& settings);

/// What the regression-based small-study test regresses on what, and the latter alone.
std::string WordingOfTest(MAConst::RegBaseTestType type);
std::string WordingOfTestCovariate(MAConst::RegBaseTestType type);

/// The pooling model with its method while trim-and-fill trims.
std::string WordingOfTrimmingModel(const MA_NAMESPACE::MAModelSettings& settings);

/// What the test of the pooled effect has as null hypothesis, when that is not simply 0; else empty.
std::string WordingOfNullHypothesis(const MA_NAMESPACE::MAModelSettings& settings);

/// The distribution of the prediction interval, when that is not the usual one; else empty.
std::string WordingOfPrediction(MAConst::PREDICTIONTYPE prediction);

/// The method of the interval of tau²: "Q-profile".
std::string WordingOfTau2Interval(MAConst::TAU2INTERVAL interval);

/// What is wrong with the end of an iteration; empty when nothing is.
std::string WordingOfDoubtfulEnd(double convergence);

/// The confidence level in percent: "95%".
std::string WordingOfLevel(const MA_NAMESPACE::MAModelSettings& settings);

/// "13 studies", "1 study".
std::string CountOfStudies(std::size_t count);

/// The text with its first letter as at the start of a sentence.
std::string Capitalised(std::string text);

} // namespace host
