#pragma once

#include "meta_analysis/analysis/studies/MAStudies.h"
#include "meta_analysis/inference/MAEstimate.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATablePooling.h"

#include <vector>

namespace MA_NAMESPACE {

/// The test of a contrast: the sum of the studies' effects, each times its coefficient, under the
/// fixed-effect model.
struct MAContrast
{
    MAEstimate effect;
    KXStatus status; ///< a warning for a missing coefficient, and errors of this contrast alone
    bool isZero;     ///< whether all coefficients are 0
};

/// Tests each contrast of the studies on their effect sizes.
std::vector<MAContrast> TestContrasts(const MAStudies& studies, const MAFixedEffectChoice& choice);

/// Tests each contrast of the studies on the effects of their tables.
std::vector<MAContrast> TestTableContrasts(const MAStudies& studies, const MATablePoolingChoice& choice);

} // namespace MA_NAMESPACE
