#pragma once

#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

/// Whether the settings name the variables of all four counts.
bool NamesTables(const MAModelSettings& settings);

/// Reads and classifies the 2x2 tables of a started pass. Error ITERATOR_FAILED.
MAReading ReadTables(MultiPassRecordIter& records, const MAModelSettings& settings);

/// Effect sizes of tables: the measure, and the correction of zero cells.
struct MATableMeasure
{
    MAConst::BINESTYPE effect = MAConst::BIN_ODDS_RATIO;
    MAZeroCorrection correction = {MAConst::ZERO_ADJUST_EACH, 0.5};
};

/// The studies of tables with their effect sizes, and the measure with the correction as it turned out:
/// `ZERO_ADJUST_ALL_IF_ANY` has become `ZERO_ADJUST_ALL` when a table had a zero cell.
struct MATableStudies
{
    KXStatus status;
    MAStudies studies;
    MATableMeasure measure;
};
MATableStudies WithTableEffects(MAStudies studies, const MATableMeasure& measure, double alpha);

} // namespace MA_NAMESPACE
