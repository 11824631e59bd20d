#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

using namespace MA_NAMESPACE;

namespace host {

OptionGroup SensitivityOptions(Options& options)
{
    if (options.command == Command::REGRESSION)
        return {};
    using Settings = MAModelSettings;
    return {.heading = "Sensitivity",
            .options = {Flag("leave-one-out", options.settings, &Settings::GetLeaveOneOut,
                             &Settings::SetLeaveOneOut, "the model without each study in turn")}};
}

} // namespace host
