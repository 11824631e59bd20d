#include "host/cli/RawOutcomes.h"

#include "host/cli/Commands.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace host {

namespace {

using Json = nlohmann::ordered_json;
using Definitions = OptionDefinitions(Options& options, Command data);

constexpr const char* EFFECT = "effect";

/// Its own ready-made effect sizes first, then those with intervals or p-values, then the raw data.
std::vector<Command> DataOfRegressions()
{
    std::vector<Command> data = {Command::REGRESSION, Command::EFFECTS};
    for (const CommandRow& row : COMMANDS)
        if (HasSteps(row.value) && row.value != Command::EFFECTS)
            data.push_back(row.value);
    return data;
}

bool Has(const OptionDefinitions& definitions, const std::string& name)
{
    return std::any_of(definitions.begin(), definitions.end(),
                       [&](const OptionDefinition& definition) { return definition.name == name; });
}

/// The options of all data, each once. Which of them are needed depends on the data.
OptionDefinitions OfAllData(Options& options, Definitions* definitionsOf)
{
    OptionDefinitions all;
    for (const Command data : DataOfRegressions())
        for (OptionDefinition& definition : definitionsOf(options, data)) {
            definition.need = OptionDefinition::Need::NONE;
            if (!Has(all, definition.name))
                all.push_back(std::move(definition));
        }
    return all;
}

/// Keeps the word of --effect until the data are known.
OptionDefinition KeptEffect(Options& options)
{
    return {.name = EFFECT,
            .argument = "MEASURE",
            .help = "raw data: effect size, as in the command that has these columns",
            .store = [&options](const std::string& text) { options.regression.rawEffect = text; },
            .value =
                [&options] {
                    return options.regression.rawEffect ? Json(*options.regression.rawEffect) : Json();
                }};
}

std::vector<std::string> GivenOf(const Options& options, const OptionDefinitions& definitions)
{
    std::vector<std::string> names;
    for (const OptionDefinition& definition : definitions)
        if (options.given.contains(definition.name))
            names.push_back(definition.name);
    return names;
}

bool HasAll(const OptionDefinitions& definitions, const std::vector<std::string>& names)
{
    return std::all_of(names.begin(), names.end(),
                       [&](const std::string& name) { return Has(definitions, name); });
}

std::size_t MissingColumns(const Options& options, const OptionDefinitions& definitions)
{
    return static_cast<std::size_t>(
        std::count_if(definitions.begin(), definitions.end(), [&](const OptionDefinition& definition) {
            return definition.need == OptionDefinition::Need::REQUIRED &&
                   !options.given.contains(definition.name);
        }));
}

/// How many of the options given these data lack. A measure is an option of all raw data, and tells nothing.
std::size_t MissingEffects(Options& options, Command data, const std::vector<std::string>& given)
{
    const OptionDefinitions known = EffectsOfData(options, data);
    return static_cast<std::size_t>(std::count_if(given.begin(), given.end(), [&](const std::string& name) {
        return name != EFFECT && !Has(known, name);
    }));
}

/// The data that have all columns given; of several the first that lack the fewest columns and options.
Command DataGiven(Options& options, const std::vector<std::string>& effects)
{
    const std::vector<std::string> given = GivenOf(options, OfAllData(options, ColumnsOfData));
    if (given.empty())
        throw UnusableInput("--effect-size is required, or the columns of raw data, such as "
                            "--treatment-events.");
    std::optional<Command> found;
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
    for (const Command data : DataOfRegressions()) {
        const OptionDefinitions columns = ColumnsOfData(options, data);
        const std::size_t missing = MissingColumns(options, columns) + MissingEffects(options, data, effects);
        if (!HasAll(columns, given) || missing >= fewest)
            continue;
        found = data;
        fewest = missing;
    }
    if (!found)
        throw UnusableInput(fmt::format("--{} are columns of different data.", fmt::join(given, ", --")));
    return *found;
}

void StoreEffect(Options& options)
{
    if (!options.regression.rawEffect)
        return;
    for (const OptionDefinition& definition : EffectsOf(options)) {
        if (definition.name != EFFECT)
            continue;
        try {
            definition.store(*options.regression.rawEffect);
        } catch (const UnusableInput& problem) {
            throw UnusableInput(fmt::format("--{}: {}", EFFECT, problem.what()));
        }
    }
}

} // namespace

OptionDefinitions ColumnsOf(Options& options)
{
    return options.outcome ? ColumnsOfData(options, *options.outcome) : OfAllData(options, ColumnsOfData);
}

/// A regression pools nothing.
OptionDefinitions EffectsOf(Options& options)
{
    OptionDefinitions effects =
        options.outcome ? EffectsOfData(options, *options.outcome) : OfAllData(options, EffectsOfData);
    if (options.command == Command::REGRESSION)
        std::erase_if(effects, [](const auto& definition) { return definition.name == "pooled-zero-cells"; });
    for (OptionDefinition& definition : effects)
        if (!options.outcome && definition.name == EFFECT)
            definition = KeptEffect(options);
    return effects;
}

bool HasRawData(const Options& options)
{
    return options.command == Command::REGRESSION && options.outcome != Command::REGRESSION;
}

void ResolveOutcome(Options& options)
{
    if (options.outcome)
        return;
    const std::vector<std::string> given = GivenOf(options, EffectsOf(options));
    const MAConst::OUTCOMETYPE outcome = options.settings.GetOutcomesType();
    options.SetOutcome(DataGiven(options, given));
    if (options.outcome == Command::EFFECTS)
        options.settings.SetOutcomesType(outcome); // as --outcome has it
    const OptionDefinitions known = EffectsOf(options);
    for (const std::string& name : given)
        if (!Has(known, name))
            throw UnusableInput(
                fmt::format("--{} has no effect on {}.", name,
                            HasRawData(options) ? "these columns" : "ready-made effect sizes"));
    StoreEffect(options);
}

} // namespace host
