#pragma once

#include "meta_analysis/inference/MAStudyInfluence.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"

namespace MA_NAMESPACE {

/// Deletion diagnostics of a meta-regression, an entry a row of its design. After an error none.
struct MARegInfluence
{
    KXStatus status;
    MAInfluenceTable table;
};

/// How the fit changes without each row in turn, under fixed effects or with the residual tau² estimated
/// anew. A row without which a coefficient would be redundant, or no residual degree of freedom be left, has
/// only what needs no deletion. Error `ITERATOR_FAILED` when the host cancels, who is asked once a row.
///
/// Cost a row: O(p³) under fixed effects and where the global search finds tau², with sums that all deletions
/// share (`MADeletionCurve`); O(k p²) for closed forms, and where those sums lose digits; O(k p²) an
/// iteration of scoring.
MARegInfluence MeasureInfluence(const MADesignMatrix& design, bool isRandom, double tau2);

} // namespace MA_NAMESPACE
