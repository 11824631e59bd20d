#pragma once

#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

// Warnings that follow from the settings and the studies alone: their codes, in the order in which they are
// recorded.

/// Warnings of a run with `studyCount` usable studies.
std::vector<int> WarningsOfRun(const MAModelSettings& settings, std::size_t studyCount);

/// Further warnings of a run on binary outcomes.
std::vector<int> WarningsOfBinaryRun(const MAModelSettings& settings);

/// Further warnings of a run of `MAOutcomeModel`.
std::vector<int> WarningsOfMeasuredRun(const MAModelSettings& settings);

/// Warnings of a fixed-effect or a random-effects meta-regression.
std::vector<int> WarningsOfRegression(const MARegSettings& settings, bool isRandom);

} // namespace MA_NAMESPACE
