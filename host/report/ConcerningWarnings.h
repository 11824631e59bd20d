#pragma once

#include "host/cli/Options.h"
#include "host/report/Warnings.h"

#include <cstddef>
#include <vector>

namespace host {

/// When a warning says something about this analysis.
enum class Concern
{
    ALWAYS,
    WITH_CORRECTED_ZEROS, ///< it is about rare events, and the data have them
    NEVER                 ///< it is about what nobody asked this program for
};

/// Of a warning code of the library. ALWAYS for a code without a rule, which HasConcernRule() tells.
Concern ConcernOf(int code);
bool HasConcernRule(int code);

/// The warnings that a report shows: those that say something about an analysis with so many studies whose
/// zero counts were corrected. The JSON has all.
std::vector<ShownWarning> Concerning(const std::vector<ShownWarning>& warnings, int correctedStudies);

} // namespace host
