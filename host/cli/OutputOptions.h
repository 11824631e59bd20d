#pragma once

#include "host/cli/OptionDefinition.h"
#include "host/cli/Options.h"

namespace host {

/// The options that say where the output goes. They are no settings of the analysis, and so have no value in
/// the JSON. They refer to `options`, which must outlive them.
OptionDefinitions OutputOptions(Options& options);

} // namespace host
