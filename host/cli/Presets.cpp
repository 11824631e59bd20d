#include "host/cli/Presets.h"

#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

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
        // What the library does unless its settings say otherwise.
        {"library",
         {{"tau2-search", "scoring"},
          {"tau2-interval", "none"},
          {"prediction", "t-k-2"},
          {"pooled-zero-cells", "as-studies"}}},
    };
    return presets;
}

std::string NamesOfPresets()
{
    std::vector<std::string> names;
    for (const Preset& preset : Presets())
        names.push_back(preset.name);
    return fmt::format("{}", fmt::join(names, ", "));
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
void ForEachSetting(const Preset& preset, Options& options, const Use& use)
{
    const std::vector<OptionDefinition> definitions = DefineOptions(options);
    for (const PresetSetting& setting : preset.settings)
        for (const OptionDefinition& definition : definitions)
            if (definition.name == setting.option)
                use(definition, setting.value);
}

} // namespace

OptionDefinition PresetOption(Options& options)
{
    return {.name = "preset",
            .argument = "NAME",
            .help = fmt::format("settings that go together, {}: the library's own defaults; options given "
                                "beside it win (default: none)",
                                NamesOfPresets()),
            .store = [&options](const std::string& text) { options.preset = PresetOf(text).name; },
            .value = [&options] { return options.preset ? Json(*options.preset) : Json(); }};
}

void ApplyPreset(Options& options)
{
    if (!options.preset)
        return;
    ForEachSetting(PresetOf(*options.preset), options,
                   [&](const OptionDefinition& definition, const std::string& value) {
                       if (!options.given.contains(definition.name))
                           definition.store(value);
                   });
}

std::string PresetSentence(Options options)
{
    std::vector<std::string> settings;
    ForEachSetting(PresetOf(*options.preset), options,
                   [&](const OptionDefinition& definition, const std::string& value) {
                       const auto resolved = definition.value().get<std::string>();
                       settings.push_back(
                           fmt::format("--{} {}{}", definition.name, resolved,
                                       resolved == value ? "" : " (in place of " + value + ")"));
                   });
    return fmt::format("{}: {}.", *options.preset, fmt::join(settings, ", "));
}

} // namespace host
