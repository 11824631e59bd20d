#pragma once

#include "meta_analysis/effectsize/MAMeans.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// The studies, ascending, whose standard deviations look like standard errors, which are smaller by the root
/// of the size: Cohen's d is beyond ±3, and the geometric mean of the two standard deviations is at most a
/// fifth of the median of those of the other studies.
std::vector<std::size_t> DoubtfulStdDevs(const std::vector<MAMeans>& studies);

} // namespace MA_NAMESPACE
