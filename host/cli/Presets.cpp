#include "host/cli/Presets.h"

#include "host/text/Choice.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace host {

namespace {

struct PresetSetting
{
    std::string option;
    std::string value;
    bool isOfRandomModel = false; ///< without effect under the fixed-effect model
};

struct Preset
{
    std::string name;
    std::string source; ///< that recommends the settings; empty for the library's own defaults
    std::vector<PresetSetting> settings;
};

/// A preset that sets the model has it first, because the other settings go by it.
const std::vector<Preset>& Presets()
{
    static const std::vector<Preset> presets = {
        {"cochrane",
         "Cochrane Handbook, version 6.5 (2024), chapter 10, and the methods page on random-effects models "
         "of 2025",
         {{"model", "random"},
          {"tau2", "reml", true},
          {"tau2-search", "global", true},
          {"tau2-interval", "q-profile", true},
          {"knapp-hartung", "if-heterogeneous", true},
          {"prediction", "t-k-2", true}}},
        {"iqwig",
         "IQWiG, General Methods, version 7.0 (2023)",
         {{"model", "random"},
          {"tau2", "eb", true},
          {"tau2-search", "global", true},
          {"tau2-interval", "q-profile", true},
          {"knapp-hartung", "truncated", true},
          {"prediction", "t-k-2", true}}},
        {"library",
         "",
         {{"tau2-search", "scoring"},
          {"tau2-interval", "none", true},
          {"prediction", "t-k-2", true},
          {"pooled-zero-cells", "as-studies"}}},
    };
    return presets;
}

const Preset& PresetOf(const std::string& name)
{
    const auto found = std::find_if(Presets().begin(), Presets().end(),
                                    [&](const Preset& preset) { return EqualInAnyCase(preset.name, name); });
    if (found == Presets().end())
        throw UnusableInput(
            fmt::format("'{}' is none of {}.{}", name, NamesOfPresets(), DidYouMean(name, PresetNames())));
    return *found;
}

bool IsRandom(const OptionDefinitions& definitions)
{
    return std::any_of(definitions.begin(), definitions.end(), [](const OptionDefinition& definition) {
        return definition.name == "model" && definition.value() == "random";
    });
}

/// Calls `use` with each option of the preset that command and model have, and with the preset's value for
/// it.
template <class Use>
void ForEachSetting(const Preset& preset, const OptionDefinitions& definitions, const Use& use)
{
    for (const PresetSetting& setting : preset.settings)
        for (const OptionDefinition& definition : definitions)
            if (definition.name == setting.option && (!setting.isOfRandomModel || IsRandom(definitions)))
                use(definition, setting.value);
}

} // namespace

std::vector<std::string> PresetNames()
{
    return ListOfNames(Presets());
}

std::string NamesOfPresets()
{
    return NamesOf(Presets());
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
    const Preset& preset = PresetOf(name);
    std::vector<std::string> settings;
    ForEachSetting(preset, definitions, [&](const OptionDefinition& definition, const std::string& value) {
        const auto resolved = definition.value().get<std::string>();
        settings.push_back(fmt::format("--{} {}{}", definition.name, resolved,
                                       resolved == value ? "" : " (in place of " + value + ")"));
    });
    const std::string source = preset.source.empty() ? "" : fmt::format(" ({})", preset.source);
    return fmt::format("{}{}: {}.", name, source, fmt::join(settings, ", "));
}

} // namespace host
