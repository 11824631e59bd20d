#pragma once

#include "host/text/Measures.h"

#include "meta_analysis/settings/MAModelSettings.h"

#include <cstddef>
#include <string>

namespace host {

bool IsRandom(const MA_NAMESPACE::MAModelSettings& settings);

/// The pooling model with its method: "random-effects model (restricted maximum likelihood)".
std::string WordingOfModel(const MA_NAMESPACE::MAModelSettings& settings);

/// Whether the fixed-effect model pools the tables, or rates, themselves, after Mantel and Haenszel or Peto.
bool PoolsTables(const MA_NAMESPACE::MAModelSettings& settings);

/// The symbol of the pooled effect's test statistic: "t", "z", or "t or z" where that goes by heterogeneity.
std::string WordingOfStatistic(const MA_NAMESPACE::MAModelSettings& settings);

/// The pooling model with its method during trimming.
std::string WordingOfTrimmingModel(const MA_NAMESPACE::MAModelSettings& settings);

/// The null hypothesis of the pooled effect's test as a sentence; empty when it is no effect.
std::string WordingOfNullHypothesis(const MA_NAMESPACE::MAModelSettings& settings, const Measure& measure);

/// The distribution of the prediction interval; empty for the default one.
std::string WordingOfPrediction(MAConst::PREDICTIONTYPE prediction);

/// The method of the interval of tau²: "Q-profile".
std::string WordingOfTau2Interval(MAConst::TAU2INTERVAL interval);

/// Explains a Q-profile interval that ends at 0.
inline constexpr const char* EMPTY_Q_PROFILE = "The effects vary less than sampling error alone makes "
                                               "likely, whatever tau² is: the Q-profile interval is "
                                               "empty, and given as [0, 0] by convention, even where the "
                                               "estimate is another.";

/// Why tau² is doubtful after an iteration that ended this way (TAU2CONVERGENCE); empty when it is not.
std::string WordingOfDoubtfulEnd(double convergence);

/// The level of significance that goes with the confidence level.
double AlphaOf(const MA_NAMESPACE::MAModelSettings& settings);

/// The confidence level in percent: "95%".
std::string WordingOfLevel(const MA_NAMESPACE::MAModelSettings& settings);

/// "13 studies", "1 study".
std::string CountOfStudies(std::size_t count);

/// The text with its first letter in upper case.
std::string Capitalised(std::string text);

} // namespace host
