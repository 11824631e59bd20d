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
/// Errors of the whole call, which then writes nothing: INPUT_NOT_GIVEN for values or offsets that are a null
/// pointer though there are sets, and for offsets that fall; BULK_ALPHA_OUTSIDE unless 0 < alpha < 1;
/// BULK_CHOICE_UNKNOWN for an estimator, a search, an adjustment, an interval or a prediction outside its
/// enumeration, and for a null hypothesis or tolerance that is not finite. OUT_OF_MEMORY, after which some
/// sets may lack results. Memory is taken once a call, none a set, but for an interval of tau² by profile
/// likelihood. Where a thread cannot be made the work goes on with those that there are. `threshold` and
/// `checksTau2` of the choice are not used: no column has the probability, and `status` asks for the check.
META_ANALYSIS_EXPORT KXStatus PoolSets(const MARaggedSets& sets, const MABulkModel& model,
                                       const MABulkResults& results, int threadCount = 1) noexcept;
META_ANALYSIS_EXPORT KXStatus PoolSets(const MABlockSets& sets, const MABulkModel& model,
                                       const MABulkResults& results, int threadCount = 1) noexcept;

} // namespace MA_NAMESPACE
