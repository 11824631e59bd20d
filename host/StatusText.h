#pragma once

#include <string>

namespace host {

/// What a status code of the library means, as a sentence.
std::string SentenceOf(int statusCode);

} // namespace host
