#include "host/cli/OptionGroups.h"

#include "host/cli/NamedColumns.h"
#include "host/cli/OptionRules.h"
#include "host/cli/Presets.h"
#include "host/cli/RawOutcomes.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

namespace host {

namespace {

using Need = OptionDefinition::Need;
using Definition = OptionDefinitions::const_iterator;

bool IsGiven(const OptionDefinition& column)
{
    return !column.value().is_null();
}

/// Exactly one of the options [first, last).
void RequireOneOf(Definition first, Definition last)
{
    if (std::count_if(first, last, IsGiven) == 1)
        return;
    std::string names = "--" + first->name;
    for (Definition option = first + 1; option != last; ++option)
        names += fmt::format("{}--{}", option + 1 == last ? " and " : ", ", option->name);
    throw UnusableInput(fmt::format("Exactly one of {} is required.", names));
}

void RequireColumns(const OptionDefinitions& definitions)
{
    for (Definition option = definitions.begin(); option != definitions.end(); ++option) {
        if (option->need == Need::REQUIRED && !IsGiven(*option))
            throw UnusableInput(fmt::format("--{} is required.", option->name));
        if (option->need == Need::THIS_OR_NEXT) {
            const Definition first = option;
            while (option->need == Need::THIS_OR_NEXT)
                ++option;
            RequireOneOf(first, option + 1);
        }
    }
}

} // namespace

OptionDefinitions DefineOptions(Options& options)
{
    OptionDefinitions all;
    for (OptionGroupMaker* const make : OPTION_GROUPS) {
        OptionGroup group = make(options);
        for (OptionDefinition& option : group.options) {
            option.heading = group.heading;
            all.push_back(std::move(option));
        }
    }
    return all;
}

void CompleteOptions(Options& options)
{
    ResolveOutcome(options);
    const OptionDefinitions definitions = DefineOptions(options);
    if (options.preset)
        ApplyPreset(*options.preset, definitions, options.given);
    RequireColumns(definitions);
    for (OptionGroupMaker* const make : OPTION_GROUPS)
        if (const OptionGroup group = make(options); group.complete)
            group.complete();
    RefuseSharedColumns(options);
    RefuseOptionsWithoutEffect(options);
}

} // namespace host
