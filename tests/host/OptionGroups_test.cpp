// Every option of every command, as the groups declare it.

#include "host/cli/Commands.h"
#include "host/cli/OptionGroups.h"

#include <gmock/gmock.h>

#include <map>

using namespace host;

namespace {

using Json = nlohmann::ordered_json;
using Values = std::map<std::string, Json>;

/// An argument that the option takes and that is not its default: the last of its choices, if it has some.
std::string ArgumentOf(const OptionDefinition& option)
{
    const std::map<std::string, std::string> byKind = {{"NUMBER", "0.25"}, {"COUNT", "7"}, {"TYPE", "2"}};
    if (option.argument != "NAME")
        return byKind.contains(option.argument) ? byKind.at(option.argument) : option.argument;
    const std::size_t end = option.help.find(" (default");
    const std::size_t start = option.help.rfind(", ", end) + 2;
    return option.help.substr(start, end - start);
}

Values ValuesOf(const OptionDefinitions& definitions)
{
    Values values;
    for (const OptionDefinition& definition : definitions)
        values[definition.name] = definition.value();
    return values;
}

std::string TextOf(const Json& value)
{
    const Json& one = value.is_array() ? value.at(0) : value;
    return one.is_string() ? one.get<std::string>() : one.dump();
}

/// The name of a ready-made measure is checked when the outcome is known, and the outcome changes the
/// measure.
bool DependsOnOutcome(const Options& options, const OptionDefinition& option)
{
    return options.command == Command::EFFECTS && (option.name == "effect" || option.name == "outcome");
}

TEST(OptionGroups, EachOptionChangesItsOwnValueAlone)
{
    for (const CommandRow& row : COMMANDS) {
        const Command command = row.value;
        Options untouched(command);
        for (std::size_t i = 0; i < DefineOptions(untouched).size(); ++i) {
            Options options(command);
            const OptionDefinitions definitions = DefineOptions(options);
            const OptionDefinition& option = definitions[i];
            if (DependsOnOutcome(options, option))
                continue;
            Values expected = ValuesOf(definitions);
            const Json before = expected[option.name];
            option.store(ArgumentOf(option));
            const Json after = option.value();
            EXPECT_NE(after, before) << option.name;
            EXPECT_EQ(TextOf(after), option.argument.empty() ? "true" : ArgumentOf(option)) << option.name;
            expected[option.name] = after;
            EXPECT_EQ(ValuesOf(definitions), expected) << option.name;
        }
    }
}

} // namespace
