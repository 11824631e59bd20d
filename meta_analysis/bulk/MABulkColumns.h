#pragma once

#include "meta_analysis/bulk/MABulkResults.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAWantedResults.h"

#include <cstddef>

namespace MA_NAMESPACE {

/// What the wanted columns take of a model.
MAWantedResults WantedBy(const MABulkResults& results);

/// Writes the row of a set without studies, or whose model failed, and that of a model.
void PutMissing(const MABulkResults& results, std::size_t set, int status);
void PutModel(const MABulkResults& results, std::size_t set, const MAPooledModel& model);

/// Writes how many studies of the set were pooled, and how many cannot be.
void PutCounts(const MABulkResults& results, std::size_t set, std::size_t studies, std::size_t leftOut);

} // namespace MA_NAMESPACE
