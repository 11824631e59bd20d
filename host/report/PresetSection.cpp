#include "host/report/PresetSection.h"

#include "host/cli/OptionGroups.h"
#include "host/cli/Presets.h"

namespace host {

ReportSections PresetSection(Options options)
{
    if (!options.preset)
        return {};
    return {{"Preset", {}, {PresetSentence(*options.preset, DefineOptions(options))}}};
}

ReportSections OptionNotesSection(const Options& options)
{
    if (options.notes.empty())
        return {};
    return {{"Options", {}, options.notes}};
}

} // namespace host
