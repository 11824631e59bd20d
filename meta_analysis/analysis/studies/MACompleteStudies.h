#pragma once

#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

/// Reads ready-made effect sizes in a started pass, with the subgroup, cumulative and contrast values of each
/// study. Error ITERATOR_FAILED.
MAReading ReadReadyMadeStudies(MultiPassRecordIter& records, const MAModelSettings& settings, double alpha);

/// Adds the subgroup, cumulative and contrast values to studies whose effect sizes were computed in an
/// earlier pass, and removes the studies whose effect size cannot be pooled (warning STUDIES_REMOVED). After
/// an error the studies are those before, without such values. Error ITERATOR_FAILED, also for a pass of
/// another length than the earlier one.
MAReading CompleteStudies(MultiPassRecordIter& records, const MAModelSettings& settings, MAReading computed);

} // namespace MA_NAMESPACE
