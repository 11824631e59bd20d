#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

using namespace MA_NAMESPACE;

namespace host {

OptionGroup SensitivityOptions(Options& options)
{
    using Settings = MAModelSettings;
    const OptionDefinition influence =
        Flag("influence", options.settings, &Settings::GetInfluence, &Settings::SetInfluence,
             "how much each study decides: residuals, DFFITS, Cook's distances, leverages and more");
    if (options.command == Command::BATCH)
        return {};
    if (options.command == Command::REGRESSION)
        return {.heading = "Sensitivity", .options = {influence}};
    return {.heading = "Sensitivity",
            .options = {Flag("leave-one-out", options.settings, &Settings::GetLeaveOneOut,
                             &Settings::SetLeaveOneOut, "the model without each study in turn"),
                        influence}};
}

} // namespace host
