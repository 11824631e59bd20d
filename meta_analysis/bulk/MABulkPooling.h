#pragma once

#include "meta_analysis/bulk/MABulkResults.h"
#include "meta_analysis/bulk/MABulkSets.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"

#include <variant>

namespace MA_NAMESPACE {

/// The model by which every set is pooled.
using MABulkModel = std::variant<MARandomEffectsChoice, MAFixedEffectChoice>;

/// Pools each set by inverse variance, as `MARandomEffectModel` and `MAContinousFixEffectModel` do one set,
/// with the same numbers to the last bit. Sets do not depend on each other, and results not on `threadCount`;
/// 0 is a thread for each processor. Bad values never spread: a set has a status of its own.
///
/// Errors of the whole call: INPUT_NOT_GIVEN for values or offsets that are a null pointer though there are
/// sets, and for offsets that fall; OUT_OF_MEMORY. Memory is taken once a call, none a set.
META_ANALYSIS_EXPORT KXStatus PoolSets(const MARaggedSets& sets, const MABulkModel& model,
                                       const MABulkResults& results, int threadCount = 1) noexcept;
META_ANALYSIS_EXPORT KXStatus PoolSets(const MABlockSets& sets, const MABulkModel& model,
                                       const MABulkResults& results, int threadCount = 1) noexcept;

} // namespace MA_NAMESPACE
