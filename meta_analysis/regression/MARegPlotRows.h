#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/regression/MAPredictEffects.h"
#include "meta_analysis/regression/MARegPlots.h"

#include <vector>

namespace MA_NAMESPACE {

/// Rows of the forest plot of a fitted model. Errors: `ITERATOR_NOT_STARTED`; `ITERATOR_FAILED`.
KXStatus PlotForest(const MARegFit& fit, const MAPredictionChoice& choice, MultiPassRecordIter& records,
                    std::vector<MARegForestRow>& rows);

/// Bubble plot of a covariate of the settings. Errors as `PlotForest`.
KXStatus PlotBubbles(const MARegFit& fit, const MAPredictionChoice& choice, MultiPassRecordIter& records,
                     int covariate, int points, MARegBubblePlot& plot);

} // namespace MA_NAMESPACE
