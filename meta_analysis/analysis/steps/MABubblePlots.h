#pragma once

#include "meta_analysis/analysis/steps/MABubbleRows.h"
#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

namespace MA_NAMESPACE {

/// A bubble plot per covariate, an entry a study in each; those before an error when there is one.
struct MABubblePlots
{
    KXStatus status;
    std::vector<MABubbleRows> plots;
    std::vector<KXStatus> warnings; ///< of the plots' regressions
};

/// Plots the studies over each covariate of `regression`. Errors: those of `MABubblePlot`.
MABubblePlots PlotBubbles(MultiPassRecordIter& records, const KXVarList& variables,
                          const MARegSettings& regression, const MAStudies& studies, int recordCount,
                          const MAModelSettings& settings, MAConst::MODELTYPE type);

} // namespace MA_NAMESPACE
