#pragma once

#include "host/cli/OptionDefinition.h"

namespace host {

// How the random-effects model finds the between-study variance, and what it says of that variance and of
// new studies.

std::vector<OptionDefinition> BetweenStudyVariance(MA_NAMESPACE::MAModelSettings& settings);
std::vector<OptionDefinition> Predictions(MA_NAMESPACE::MAModelSettings& settings);

/// Refuses what is given and has no effect or no meaning under the model and the estimator. Throws
/// UnusableInput.
void CheckRandomEffects(const Options& options);

/// Refuses an iterative estimator without an iteration, which would be the estimator of its start. Throws
/// UnusableInput.
void CheckIterations(const MA_NAMESPACE::MAModelSettings& settings);

} // namespace host
