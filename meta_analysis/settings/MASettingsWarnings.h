#pragma once

#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

// Warnings that follow from the settings and the studies alone, as codes in the order of their tables. Each
// may throw std::bad_alloc.

/// Of a run of any driver, `studyCount` studies being usable.
std::vector<int> WarningsOfRun(const MAModelSettings& settings, std::size_t studyCount);

/// What a run on binary outcomes has besides.
std::vector<int> WarningsOfBinaryRun(const MAModelSettings& settings);

/// Of a fixed-effect or a random-effects meta-regression.
std::vector<int> WarningsOfRegression(const MARegSettings& settings, bool isRandom);

} // namespace MA_NAMESPACE
