#pragma once

#include "meta_analysis/analysis/models/MAPool.h"
#include "meta_analysis/inference/MAStudyInfluence.h"

#include <vector>

namespace MA_NAMESPACE {

/// Deletion diagnostics of a model, an entry a study. After an error, which is that of a model, none.
struct MAInfluence
{
    KXStatus status;
    MAInfluenceTable table;
};

/// How the model changes without each study in turn. The adjustment after Knapp and Hartung scales nothing.
/// Where counts are pooled tau² counts as 0 and is missing; DFFITS is missing as well but for Peto's method,
/// whose weights alone are inverse variances. For two studies there is the leverage, weight and `baujatX`
/// alone, for fewer nothing. Cost: that of leaving each study out.
MAInfluence MeasureInfluence(const MAStudies& studies, const MAModelChoice& choice);

/// The same from the models of `LeaveEachOut` by this choice, which are not computed again unless the
/// adjustment has scaled them, or there are none.
MAInfluence MeasureInfluence(const MAStudies& studies, const MAModelChoice& choice,
                             const std::vector<MAPooledModel>& leaveOneOut);

} // namespace MA_NAMESPACE
