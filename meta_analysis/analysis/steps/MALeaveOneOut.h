#pragma once

#include "meta_analysis/analysis/models/MAPool.h"

#include <vector>

namespace MA_NAMESPACE {

/// The models of all studies but one: entry i leaves study i out. After an error, which is that of the first
/// model that failed, the models before it.
struct MALeaveOneOut
{
    KXStatus status;
    std::vector<MAPooledModel> models;
};

/// Pools all studies but one, for each in turn, as a run without that study would; effect sizes and tables
/// keep the zero-cell correction that they have. Empty for fewer than two studies.
///
/// A study costs O(1) where `MADeletedModels` has the model, which then has no prediction and no likelihood,
/// and of 256 studies or more where `MADeletedFixedModels` or `PoolTablesWithoutEach` has it; otherwise one
/// pooling.
MALeaveOneOut LeaveEachOut(const MAStudies& studies, const MAModelChoice& choice);

} // namespace MA_NAMESPACE
