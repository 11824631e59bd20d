#pragma once

#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

/// A ready-made effect size of a record, on the analysis scale.
struct MAReadyMade
{
    MAConst::EXCLUSION status; ///< `EXCLUSION_NONE`: a study
    double effectSize;
    double variance;
    double stdError;
    MAConst::CONVERSION from;
    bool isAsymmetric; ///< the confidence interval that the standard error is from
};

/// Reads effect size and standard error by what the settings name and the record has.
MAReadyMade ReadReadyMade(const Record& record, const MAModelSettings& settings);

/// Whether the settings name variables from which standard errors are converted.
bool NamesConversions(const MAInputSettings& settings);

} // namespace MA_NAMESPACE
