#pragma once

#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/effectsize/MAMeansChoice.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

/// Whether the settings name the variables of both groups: the size, and mean and dispersion or what is
/// converted into them.
bool NamesMeans(const MAModelSettings& settings);

/// Reads and classifies the group means of a started pass. Error ITERATOR_FAILED.
MAReading ReadMeans(MultiPassRecordIter& records, const MAModelSettings& settings);

/// The studies of means with their effect sizes; none for a measure outside the enumeration.
MAStudies WithMeansEffects(MAStudies studies, const MAMeansChoice& choice, double alpha);

} // namespace MA_NAMESPACE
