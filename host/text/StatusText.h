#pragma once

#include "meta_analysis/platform/common/KXStatus.h"

#include <string>
#include <vector>

namespace host {

/// What a status code of the library means, as a sentence.
std::string SentenceOf(int statusCode);

/// Whether the library doubts a tau² that it reports.
bool HasTau2Doubt(const std::vector<KXStatus>& warnings);

} // namespace host
