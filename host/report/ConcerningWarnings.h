#pragma once

#include "host/cli/Options.h"
#include "host/report/Cautions.h"
#include "host/report/Warnings.h"

#include <cstddef>
#include <vector>

namespace host {

/// When a warning says something about this analysis.
enum class Concern
{
    ALWAYS,
    NEVER ///< it is about what nobody asked this program for, or a caution says it where it concerns
};

/// Of a warning code of the library. ALWAYS for a code without a rule, which HasConcernRule() tells.
Concern ConcernOf(int code);
bool HasConcernRule(int code);

/// The warnings that a report shows: those that say something that its cautions do not. The JSON has all.
std::vector<ShownWarning> Concerning(const std::vector<ShownWarning>& warnings, const Cautions& cautions);

} // namespace host
