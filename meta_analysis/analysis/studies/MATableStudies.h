#pragma once

#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

/// Whether the settings name the variables of all counts: the events, and the non-events or the size, of each
/// group.
bool NamesTables(const MAModelSettings& settings);

/// Reads and classifies the 2x2 tables of a started pass. Error ITERATOR_FAILED.
MAReading ReadTables(MultiPassRecordIter& records, const MAModelSettings& settings);

/// The studies of tables with their effect sizes.
struct MATableStudies
{
    MAStudies studies;
    MAZeroCorrection correction; ///< resolved for the tables
};
MATableStudies WithTableEffects(MAStudies studies, MAConst::BINESTYPE measure,
                                const MAZeroCorrection& correction, double alpha);

} // namespace MA_NAMESPACE
