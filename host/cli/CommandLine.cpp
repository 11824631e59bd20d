#include "host/cli/CommandLine.h"

#include "host/cli/Commands.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OutputOptions.h"
#include "host/text/ProgramInfo.h"
#include "host/text/UnusableInput.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <utility>

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
    "'meta-analysis COMMAND --help' lists the options of a command.\n\n";

constexpr const char* EXIT_STATUSES =
    "Exit status: 0 the analysis ran, with warnings or without; 1 the library returned an error (its code "
    "and a\n"
    "sentence are on standard error; --json holds what was computed before); 2 unusable arguments or data\n"
    "(nothing is written), or a file or a picture could not be written (everything else is).";

constexpr const char* BATCH_EXIT_STATUSES =
    "Exit status: 0 the run came to its end, rows left out or not; 1 the library returned an error (its code "
    "and a\n"
    "sentence are on standard error); 2 unusable arguments or data, or a file could not be written.";

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

void AddOption(CLI::App& app, const OptionDefinition& definition)
{
    const std::string name = "--" + definition.name;
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
    if (parser.options.command == Command::BATCH)
        app.add_option("DATA", parser.options.batch.files, "files with the data")->type_name("FILE");
    else
        app.add_option("DATA", parser.options.dataPath, "CSV file with the data")->type_name("FILE");
    for (const OptionDefinition& definition : DefineOptions(parser.options))
        AddOption(app, Noted(definition, parser.options.given));
    for (const OptionDefinition& definition : OutputOptions(parser.options))
        AddOption(app, definition);
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
    program.set_version_flag("--version", fmt::format("{} {}", PROGRAM_NAME, PROGRAM_VERSION));
    program.footer(std::string(EXAMPLE) + EXIT_STATUSES);
}

[[noreturn]] void FailWithoutCommand(const CLI::App& program)
{
    const std::vector<std::string> arguments = program.remaining();
    const std::string problem =
        arguments.empty() ? "No command is given" : fmt::format("'{}' is no command", arguments.front());
    throw UnusableInput(fmt::format("{}. The commands are {}; '{} --help' tells more.", problem,
                                    NamesOf(COMMANDS), PROGRAM_NAME));
}

/// Throws UnusableInput for arguments that the command does not have.
void RequireNoRest(const CLI::App& program, const CLI::App& command)
{
    const std::vector<std::string> misplaced = program.remaining();
    if (!misplaced.empty())
        throw UnusableInput(
            fmt::format("'{}' stands before the command: options follow it.", misplaced.front()));
    for (const std::string& argument : command.remaining())
        if (argument.size() > 1 && argument.front() == '-')
            throw UnusableInput(fmt::format("'{0}' has no option {1}; '{2} {0} --help' lists its options.",
                                            command.get_name(), argument, PROGRAM_NAME));
    if (command.remaining_size() > 0)
        throw UnusableInput(fmt::format("'{}' is one argument too many.", command.remaining().front()));
}

Options TakeOptions(const CLI::App& program, CommandParsers& parsers)
{
    for (CommandParser& parser : parsers) {
        if (!parser.app->parsed())
            continue;
        RequireNoRest(program, *parser.app);
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

} // namespace

std::variant<Options, TextToShow> ParseCommandLine(int argc, const char* const* argv)
{
    CLI::App program(PROGRAM_HELP, PROGRAM_NAME);
    DescribeProgram(program);
    CommandParsers parsers;
    AddCommands(program, parsers);
    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return TextToShow{program.help()};
    } catch (const CLI::CallForVersion& version) {
        return TextToShow{std::string(version.what()) + "\n"};
    } catch (const CLI::ArgumentMismatch& mismatch) {
        throw UnusableInput(SentenceOf(mismatch));
    } catch (const CLI::ParseError& problem) {
        throw UnusableInput(fmt::format("{}.", problem.what()));
    }
    Options options = TakeOptions(program, parsers);
    options.arguments.assign(argv + 1, argv + argc);
    return options;
}

} // namespace host
