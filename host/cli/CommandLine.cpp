#include "host/cli/CommandLine.h"

#include "host/cli/Commands.h"
#include "host/cli/Completion.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OutputOptions.h"
#include "host/text/ProgramInfo.h"
#include "host/text/UnusableInput.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

namespace {

constexpr const char* PROGRAM_HELP =
    "Pools the studies of a CSV file: effect sizes, fixed- or random-effects model, heterogeneity.\n"
    "The first line of the file names the columns; an empty field, NA, N/A, NaN or a point is a missing "
    "value.";

constexpr const char* EXAMPLE =
    "Example:\n"
    "  meta-analysis binary trials.csv --study author --effect risk-ratio \\\n"
    "      --treatment-events te --treatment-nonevents tn --control-events ce --control-nonevents cn\n\n"
    "'meta-analysis COMMAND --help' or 'meta-analysis help COMMAND' lists the options of a command.\n\n";

constexpr const char* EXIT_STATUSES =
    "Exit status: 0 the analysis ran, with warnings or without; 1 the library returned an error (its code "
    "and a\n"
    "sentence are on standard error; --json holds what was computed before); 2 unusable arguments or data\n"
    "(nothing is written), or a file or a picture could not be written (everything else is).";

constexpr const char* BATCH_EXIT_STATUSES =
    "Exit status: 0 the run came to its end, rows left out or not; 1 the library returned an error (its code "
    "and a\n"
    "sentence are on standard error); 2 unusable arguments or data, or a file could not be written.";

std::string VersionText()
{
    return fmt::format("{} {}", PROGRAM_NAME, PROGRAM_VERSION);
}

/// Help with a usage line that names the data file like any other argument.
class HelpFormatter : public CLI::Formatter
{
public:
    std::string make_usage(const CLI::App* app, std::string name) const override
    {
        const bool isProgram = app->get_parent() == nullptr;
        const char* const data = app->get_name() == NameOf(COMMANDS, Command::BATCH) ? "FILE..." : "DATA.csv";
        return fmt::format("\nUsage: {} {}{} OPTIONS\n", name, isProgram ? "COMMAND " : "", data);
    }
    std::string make_positionals(const CLI::App* /*app*/) const override { return {}; }
};

/// A command, and the options that the parser stores for it.
struct CommandParser
{
    CommandParser(CLI::App& program, const CommandRow& row)
        : options(row.value), app(program.add_subcommand(std::string(row.name), row.help)->group("Commands"))
    {}

    Options options;
    CLI::App* app;
};

using CommandParsers = std::deque<CommandParser>; // its elements stay where they are

void StoreArguments(const OptionDefinition& definition, const CLI::results_t& arguments)
{
    if (arguments.size() != 1 && !definition.isRepeatable)
        throw UnusableInput(fmt::format("--{} is given {} times.", definition.name, arguments.size()));
    try {
        for (const std::string& argument : arguments)
            definition.store(argument);
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("--{}: {}", definition.name, problem.what()));
    }
}

/// All options that the command has, in the order of the help.
OptionDefinitions AllOptions(Options& options)
{
    OptionDefinitions all = DefineOptions(options);
    for (OptionDefinition& option : OutputOptions(options))
        all.push_back(std::move(option));
    return all;
}

std::vector<std::string> OptionNames(Command command)
{
    Options options(command);
    std::vector<std::string> names = {"help", "version"};
    for (const OptionDefinition& option : AllOptions(options))
        names.push_back(option.name);
    return names;
}

/// The option of the command that is near, or the commands that have the option; as a sentence, if any.
std::string NearestOption(Command command, const std::string& argument)
{
    const std::string name = argument.substr(std::min(argument.find_first_not_of('-'), argument.size()));
    std::vector<std::string> others;
    for (const CommandRow& row : COMMANDS)
        if (const std::vector<std::string> names = OptionNames(row.value);
            std::find(names.begin(), names.end(), name) != names.end())
            others.emplace_back(row.name);
    if (!others.empty())
        return fmt::format(" It is an option of {}.", fmt::join(others, ", "));
    return DidYouMean(name, OptionNames(command), "--");
}

/// Both names, as the parser takes and the help shows them.
std::string NamesOf(const OptionDefinition& definition)
{
    return (definition.shortName.empty() ? "" : "-" + definition.shortName + ",") + "--" + definition.name;
}

void AddOption(CLI::App& app, const OptionDefinition& definition)
{
    const std::string name = NamesOf(definition);
    if (definition.argument.empty()) {
        app.add_flag_function(
               name, [definition](std::int64_t) { definition.store({}); }, definition.help)
            ->group(definition.heading)
            ->disable_flag_override();
        return;
    }
    const CLI::callback_t store = [definition](const CLI::results_t& arguments) {
        StoreArguments(definition, arguments);
        return true;
    };
    app.add_option(name, store, definition.help)
        ->type_name(definition.argument)
        ->group(definition.heading)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

/// The option, extended to record its name in `given` when it is used.
OptionDefinition Noted(OptionDefinition definition, std::set<std::string>& given)
{
    definition.store = [store = std::move(definition.store), name = definition.name,
                        &given](const std::string& text) {
        store(text);
        given.insert(name);
    };
    return definition;
}

void AddOptions(CommandParser& parser)
{
    CLI::App& app = *parser.app;
    app.allow_extras();
    app.set_version_flag("--version", VersionText(), "Display program version information and exit");
    if (parser.options.command == Command::BATCH)
        app.add_option("DATA", parser.options.batch.files, "files with the data")->type_name("FILE");
    else
        app.add_option("DATA", parser.options.dataPath, "CSV file with the data")->type_name("FILE");
    for (const OptionDefinition& definition : AllOptions(parser.options))
        AddOption(app, Noted(definition, parser.options.given));
    app.footer(parser.options.command == Command::BATCH ? BATCH_EXIT_STATUSES : EXIT_STATUSES);
}

void AddCommands(CLI::App& program, CommandParsers& parsers)
{
    for (const CommandRow& row : COMMANDS)
        parsers.emplace_back(program, row);
    for (CommandParser& parser : parsers)
        AddOptions(parser);
}

void DescribeProgram(CLI::App& program)
{
    program.formatter(std::make_shared<HelpFormatter>());
    program.require_subcommand(0, 1);
    program.allow_extras();
    program.set_version_flag("--version", VersionText());
    program.footer(std::string(EXAMPLE) + EXIT_STATUSES);
}

[[noreturn]] void FailWithoutCommand(const CLI::App& program)
{
    const std::vector<std::string> arguments = program.remaining();
    std::vector<std::string> names = ListOfNames(COMMANDS);
    names.insert(names.end(), {"help", "--help", "--version"});
    const std::string problem = arguments.empty() ? "No command is given."
                                                  : fmt::format("'{}' is no command.{}", arguments.front(),
                                                                DidYouMean(arguments.front(), names));
    throw UnusableInput(fmt::format("{} The commands are {}; '{} --help' tells more.", problem,
                                    NamesOf(COMMANDS), PROGRAM_NAME));
}

/// Suggests the option of the command that is near, or else names the commands that have the option.
[[noreturn]] void FailWithUnknownOption(const Options& options, const std::string& argument)
{
    const std::string command = NameOf(COMMANDS, options.command);
    const std::string name = argument.substr(0, argument.find('='));
    const std::string hint = NearestOption(options.command, name);
    throw UnusableInput(fmt::format("'{0}' has no option {1}.{2} '{3} {0} --help' lists its options.",
                                    command, argument, hint, PROGRAM_NAME));
}

/// Throws UnusableInput for arguments that the command does not have.
void RequireNoRest(const CLI::App& program, const CommandParser& parser)
{
    const std::vector<std::string> misplaced = program.remaining();
    if (!misplaced.empty())
        throw UnusableInput(
            fmt::format("'{}' stands before the command: options follow it.", misplaced.front()));
    const std::vector<std::string> rest = parser.app->remaining();
    for (const std::string& argument : rest)
        if (argument.size() > 1 && argument.front() == '-')
            FailWithUnknownOption(parser.options, argument);
    if (!rest.empty())
        throw UnusableInput(fmt::format("'{}' is one argument too many.", rest.front()));
}

Options TakeOptions(const CLI::App& program, CommandParsers& parsers)
{
    for (CommandParser& parser : parsers) {
        if (!parser.app->parsed())
            continue;
        RequireNoRest(program, parser);
        if (parser.options.dataPath.empty() && parser.options.batch.files.empty())
            throw UnusableInput("No data file is given.");
        CompleteOptions(parser.options);
        return std::move(parser.options);
    }
    FailWithoutCommand(program);
}

/// Rewords the two mismatches that the parser finds itself: "--level: 1 required NUMBER missing", and an
/// argument of a flag.
std::string SentenceOf(const CLI::ArgumentMismatch& mismatch)
{
    const std::string_view text = mismatch.what();
    const std::size_t colon = text.find(':');
    return colon == std::string_view::npos
               ? fmt::format("--{}: a flag takes no argument.", text.substr(0, text.find(' ')))
               : fmt::format("{} needs an argument.", text.substr(0, colon));
}

using Arguments = std::vector<std::string>;

/// `help COMMAND` as `COMMAND --help`, and `help` as well as `help help` as `--help`.
Arguments WithoutHelpCommand(Arguments arguments)
{
    if (arguments.empty() || arguments.front() != "help")
        return arguments;
    arguments.erase(arguments.begin());
    if (!arguments.empty() && arguments.front() == "help")
        arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
    return arguments;
}

/// The completion that the build asks for, as `--completion SHELL`. Users have no need of it.
std::optional<TextToShow> CompletionAskedFor(const Arguments& arguments)
{
    if (arguments.size() != 2 || arguments.front() != "--completion")
        return std::nullopt;
    std::vector<CommandOptions> commands;
    for (const CommandRow& row : COMMANDS) {
        Options options(row.value);
        commands.push_back(
            {std::string(row.name), row.help, row.value == Command::BATCH, AllOptions(options)});
    }
    return TextToShow{CompletionFor(arguments.back(), commands)};
}

void Parse(CLI::App& program, Arguments arguments)
{
    std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
    program.parse(std::move(arguments));
}

} // namespace

std::variant<Options, TextToShow> ParseCommandLine(int argc, const char* const* argv)
{
    const Arguments arguments(argv + 1, argv + argc);
    if (const std::optional<TextToShow> completion = CompletionAskedFor(arguments))
        return *completion;
    CLI::App program(PROGRAM_HELP, PROGRAM_NAME);
    DescribeProgram(program);
    CommandParsers parsers;
    AddCommands(program, parsers);
    try {
        Parse(program, WithoutHelpCommand(arguments));
    } catch (const CLI::CallForHelp&) {
        if (program.get_subcommands().empty() && program.remaining_size() > 0)
            FailWithoutCommand(program);
        return TextToShow{program.help()};
    } catch (const CLI::CallForVersion& version) {
        return TextToShow{std::string(version.what()) + "\n"};
    } catch (const CLI::ArgumentMismatch& mismatch) {
        throw UnusableInput(SentenceOf(mismatch));
    } catch (const CLI::ParseError& problem) {
        throw UnusableInput(fmt::format("{}.", problem.what()));
    }
    Options options = TakeOptions(program, parsers);
    options.arguments = arguments;
    return options;
}

} // namespace host
