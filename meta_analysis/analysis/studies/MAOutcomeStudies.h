#pragma once

#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

/// Whether the settings name a measure of `MAConst::OUTCOMEMEASURE`, and the variables of its data.
bool NamesOutcome(const MAModelSettings& settings);

/// Studies of one group, or of two groups' rates, with their effect sizes.
struct MAOutcomeStudies
{
    MAReading reading;
    MAZeroCorrection correction; ///< resolved for the studies; none for a measure without one
};

/// Reads a started pass, and computes the effect sizes. A record is invalid when its values cannot be a
/// study's: negative counts, events above the size, a size or time that is not positive, a correlation not
/// between -1 and 1, fewer than two persons or no spread behind a mean. Error ITERATOR_FAILED.
MAOutcomeStudies ReadOutcomes(MultiPassRecordIter& records, const MAModelSettings& settings, double alpha);

} // namespace MA_NAMESPACE
