#pragma once

#include "host/cli/Options.h"

#include <string>
#include <vector>

namespace host {

/// The columns that are read as numbers: those of the data, covariates, and those of contrasts.
std::vector<std::string> NumberColumnsOf(const Options& options);

/// Refuses a column that is given for two values of a study that cannot be the same, such as an effect size
/// and its standard error. The groups of a study may share a size, person-time, standard deviation or
/// variance. Throws UnusableInput.
void RefuseSharedColumns(const Options& options);

} // namespace host
