#include "host/cli/Presets.h"

#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace host {

namespace {

struct PresetSetting
{
    std::string option;
    std::string value;
};

struct Preset
{
    std::string name;
    std::vector<PresetSetting> settings;
};

const std::vector<Preset>& Presets()
{
    static const std::vector<Preset> presets = {
        // The defaults of the library's own settings.
        {"library",
         {{"tau2-search", "scoring"},
          {"tau2-interval", "none"},
          {"prediction", "t-k-2"},
          {"pooled-zero-cells", "as-studies"}}},
    };
    return presets;
}

const Preset& PresetOf(const std::string& name)
{
    const auto found = std::find_if(Presets().begin(), Presets().end(),
                                    [&](const Preset& preset) { return preset.name == name; });
    if (found == Presets().end())
        throw UnusableInput(fmt::format("'{}' is none of {}.", name, NamesOfPresets()));
    return *found;
}

/// Calls `use` with each option of the preset that the command has, and with the preset's value for it.
template <class Use>
void ForEachSetting(const Preset& preset, const OptionDefinitions& definitions, const Use& use)
{
    for (const PresetSetting& setting : preset.settings)
        for (const OptionDefinition& definition : definitions)
            if (definition.name == setting.option)
                use(definition, setting.value);
}

} // namespace

std::string NamesOfPresets()
{
    std::vector<std::string> names;
    for (const Preset& preset : Presets())
        names.push_back(preset.name);
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string KnownPreset(const std::string& name)
{
    return PresetOf(name).name;
}

void ApplyPreset(const std::string& name, const OptionDefinitions& definitions,
                 const std::set<std::string>& given)
{
    ForEachSetting(PresetOf(name), definitions,
                   [&](const OptionDefinition& definition, const std::string& value) {
                       if (!given.contains(definition.name))
                           definition.store(value);
                   });
}

std::string PresetSentence(const std::string& name, const OptionDefinitions& definitions)
{
    std::vector<std::string> settings;
    ForEachSetting(
        PresetOf(name), definitions, [&](const OptionDefinition& definition, const std::string& value) {
            const auto resolved = definition.value().get<std::string>();
            settings.push_back(fmt::format("--{} {}{}", definition.name, resolved,
                                           resolved == value ? "" : " (in place of " + value + ")"));
        });
    return fmt::format("{}: {}.", name, fmt::join(settings, ", "));
}

} // namespace host
