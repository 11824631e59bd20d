#pragma once

#include "host/run/Analysis.h"

#include <nlohmann/json.hpp>

namespace host {

/// What every public getter of the analysis object returns, under the getter's name without its leading
/// `Get`: a missing value or NaN as null, an infinity as "inf" or "-inf", an enumeration as its number.
nlohmann::ordered_json ResultsOf(const Analysis& analysis);

} // namespace host
