#pragma once

#include "meta_analysis/platform/common/KXStatus.h"

#include <string>
#include <vector>

namespace host {

/// The meaning of a status code of the library as a sentence.
std::string SentenceOf(int statusCode);

/// Whether the warnings have MAStatusCode::TAU2_DOUBTFUL.
bool HasTau2Doubt(const std::vector<KXStatus>& warnings);

} // namespace host
