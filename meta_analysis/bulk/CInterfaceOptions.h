#pragma once

#include "meta_analysis/bulk/meta_analysis.h"
#include "meta_analysis/platform/common/KXStatus.h"

namespace MA_NAMESPACE {

// The options of a call: the caller's, and the defaults of those that the caller's struct lacks; without a
// struct, the defaults of all. Errors: STRUCT_SIZE_UNKNOWN, STRUCT_FIELD_UNKNOWN; OPTION_VALUE_UNKNOWN;
// TAU2_INTERVAL_UNAVAILABLE.

KXStatus ReadOptions(const ma_pool_options* given, ma_pool_options& options);
KXStatus ReadOptions(const ma_regression_options* given, ma_regression_options& options);
KXStatus ReadOptions(const ma_table_options* given, ma_table_options& options);
KXStatus ReadOptions(const ma_means_options* given, ma_means_options& options);

} // namespace MA_NAMESPACE
