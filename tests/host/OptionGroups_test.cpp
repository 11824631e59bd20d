// Every option of every command, as the groups declare it.

#include "host/RunProgram.h"
#include "host/cli/Commands.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OutputOptions.h"

#include <map>
#include <set>

using namespace host;

namespace {

using Json = nlohmann::ordered_json;
using Values = std::map<std::string, Json>;

/// An argument that the option takes and that is not its default: the last of its choices, if it has some.
std::string ArgumentOf(const OptionDefinition& option)
{
    const std::map<std::string, std::string> byKind = {
        {"NUMBER", "0.25"}, {"COUNT", "7"},   {"TYPE", "2"},         {"LIMITS", "0.25,4.5"},
        {"LABELS", "a,b"},  {"NAMES", "a,b"}, {"SIZE", "80.5x60.5"}, {"DPI", "300"}};
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
    if (!value.is_array())
        return value.is_string() ? value.get<std::string>() : value.dump();
    std::string text;
    for (const Json& element : value)
        text += (text.empty() ? "" : ",") + TextOf(element);
    return text;
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
            const std::string given = option.argument == "SIZE" ? "80.5,60.5" : ArgumentOf(option);
            EXPECT_EQ(TextOf(after), option.argument.empty() ? "true" : given) << option.name;
            expected[option.name] = after;
            EXPECT_EQ(ValuesOf(definitions), expected) << option.name;
        }
    }
}

/// Tables, means, times and effect sizes of the same studies, with zeros, a missing variance and one group
/// whose rows are apart.
constexpr const char* DATA = "te,tn,tN,ce,cn,cN,m1,s1,m2,s2,t1,t2,y,v,x,g\n"
                             "4,119,123,11,128,139,5.1,2.2,4.2,2.1,123,139,-0.94,0.36,0.44,a\n"
                             "6,300,306,29,274,303,5.9,2.6,4.0,3.1,306,303,-1.67,0.21,0.55,a\n"
                             "3,228,231,11,209,220,4.1,1.2,4.4,1.8,231,220,-1.39,0.43,0.42,b\n"
                             "0,62,62,5,50,55,6.1,3.2,3.2,2.2,62,55,-2.30,2.10,0.52,b\n"
                             "33,5036,5069,47,5761,5808,5.5,2.0,4.9,2.4,5069,5808,-0.22,0.05,0.13,b\n"
                             "0,40,40,0,42,42,5.0,2.9,4.1,2.0,40,42,0.30,NA,0.33,b\n"
                             "180,1361,1541,372,1079,1451,4.8,2.1,4.6,2.2,1541,1451,-0.96,0.01,0.18,a\n";

const std::map<Command, std::string> COLUMNS = {
    {Command::BINARY,
     "--treatment-events te --treatment-nonevents tn --control-events ce --control-nonevents cn"},
    {Command::CONTINUOUS, "--treatment-n tN --treatment-mean m1 --treatment-sd s1 --control-n cN "
                          "--control-mean m2 --control-sd s2"},
    {Command::EFFECTS, "--effect-size y --variance v"},
    {Command::REGRESSION, "--effect-size y --variance v --covariate x"},
    {Command::RATES, "--treatment-events te --treatment-time t1 --control-events ce --control-time t2"},
    {Command::PROPORTION, "--events te --n tN"},
    {Command::RATE, "--events te --time t1"},
    {Command::CORRELATION, "--r x --n tN"},
    {Command::MEAN, "--n tN --mean m1 --sd s1"},
    {Command::BATCH, "--effect-size y --variance v --key g"},
};

/// What scripts give to every analysis, what changes no result, and what tells how a file is written.
const std::set<std::string> ACCEPTED_EVERYWHERE = {"max-iterations", "max-step-halving", "tolerance",
                                                   "tau2-search",    "threads",          "separator",
                                                   "decimal",        "missing"};

Arguments Given(const OptionDefinition& option, const TemporaryFolder& folder)
{
    const std::map<std::string, std::string> texts = {{"COLUMN", "x"},
                                                      {"A:B", "x:x"},
                                                      {"WEIGHTS", "0,1"},
                                                      {"VALUES", "x=0.5"},
                                                      {"LIST", "k"},
                                                      {"FILE", folder.PathOf("file")},
                                                      {"FOLDER", folder.PathOf("folder")}};
    Arguments given = {"--" + option.name};
    if (texts.contains(option.argument))
        given.push_back(texts.at(option.argument));
    else if (!option.argument.empty())
        given.push_back(ArgumentOf(option));
    return given;
}

/// An option is never silently without effect: alone it changes the report, writes a file, or is refused in a
/// sentence that names it.
TEST(OptionGroups, EachOptionHasAnEffectOrIsRefused)
{
    const TemporaryFolder data;
    const std::string file = data.Write("data.csv", DATA);
    for (const CommandRow& row : COMMANDS) {
        const Arguments command = Arguments{std::string(row.name), file} + COLUMNS.at(row.value);
        const std::string untouched = ReportOf(command);
        Options options(row.value);
        OptionDefinitions definitions = DefineOptions(options);
        for (const OptionDefinition& option : OutputOptions(options))
            definitions.push_back(option);
        for (const OptionDefinition& option : definitions) {
            if (ACCEPTED_EVERYWHERE.contains(option.name))
                continue;
            const TemporaryFolder folder;
            const ProgramRun run = RunProgram(command + Given(option, folder));
            const bool isRefused =
                run.exitStatus == 2 && run.errors.find("--" + option.name) != std::string::npos;
            EXPECT_TRUE(isRefused || (run.exitStatus < 2 && run.output != untouched) ||
                        !folder.Files().empty())
                << row.name << " --" << option.name << ": " << run.errors;
        }
    }
}

} // namespace
