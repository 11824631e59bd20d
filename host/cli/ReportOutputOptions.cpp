#include "host/cli/ReportOutputOptions.h"

#include "host/cli/OptionKinds.h"
#include "host/text/TableKind.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace host {

namespace {

constexpr const char* STANDARD_OUTPUT = "-";

constexpr Domain DIGITS = {[](double x) { return x >= 0 && x <= 15; }, "from 0 to 15"};

OptionDefinition PlaceOption(const char* name, const char* shortName, const char* help,
                             std::optional<std::string>& place)
{
    return {.name = name,
            .shortName = shortName,
            .argument = "FILE",
            .help = help,
            .heading = "Output",
            .store = [&place](const std::string& text) { place = text; },
            .value = {}};
}

OptionDefinition OutputFlag(const char* name, const char* shortName, const char* help, bool& target)
{
    return {.name = name,
            .shortName = shortName,
            .help = help,
            .heading = "Output",
            .store = [&target](const std::string&) { target = true; },
            .value = {}};
}

OptionDefinition DigitsOption(std::optional<int>& digits)
{
    return {.name = "digits",
            .argument = "COUNT",
            .help = "decimals in reports, tables and pictures, from 0 to 15; percentages have one less, "
                    "p-values four (default: as suits each number)",
            .heading = "Output",
            .store = [&digits](
                         const std::string& text) { digits = RequireInside(DIGITS, ParseWholeNumber(text)); },
            .value = {}};
}

/// The options whose output goes to standard output in place of the report.
std::vector<const char*> UsersOfStandardOutput(const Options& options)
{
    std::vector<const char*> users;
    if (options.jsonPath == STANDARD_OUTPUT)
        users.push_back("--json -");
    if (options.htmlPath == STANDARD_OUTPUT)
        users.push_back("--html -");
    if (options.report.tablePath == STANDARD_OUTPUT)
        users.push_back("--table -");
    if (options.report.output == STANDARD_OUTPUT)
        users.push_back("--output -");
    return users;
}

/// Without any file to write, the exit status is what a quiet run tells.
void CheckQuiet(const Options& options)
{
    if (options.report.isQuiet && options.report.output)
        throw UnusableInput("--quiet leaves out the report, which --output writes.");
}

} // namespace

OptionDefinitions ReportOutputOptions(ReportOptions& report)
{
    return {
        PlaceOption("table", "",
                    "write the studies and the pooled effects, or the coefficients, as a table: FILE.csv, "
                    "FILE.md (Markdown) or FILE.tex (LaTeX); - for CSV on standard output, without report",
                    report.tablePath),
        DigitsOption(report.digits),
        OutputFlag("citation", "",
                   "end the report with a sentence on the methods, and their references as BibTeX",
                   report.hasCitation),
        PlaceOption("output", "o", "write the report to this file; - for standard output, as without",
                    report.output),
        OutputFlag("quiet", "q", "write no report", report.isQuiet)};
}

bool WritesReportToStandardOutput(const Options& options)
{
    const std::vector<const char*> users = UsersOfStandardOutput(options);
    const bool isTaken =
        std::any_of(users.begin(), users.end(), [](std::string_view user) { return user != "--output -"; });
    const bool isElsewhere = options.report.output.value_or(STANDARD_OUTPUT) != STANDARD_OUTPUT;
    return !isTaken && !isElsewhere && !options.report.isQuiet;
}

void CheckReportOutput(const Options& options)
{
    if (const std::vector<const char*> users = UsersOfStandardOutput(options); users.size() > 1)
        throw UnusableInput(
            fmt::format("{} and {} cannot both be written to standard output.", users[0], users[1]));
    if (options.report.tablePath)
        TableKindOf(*options.report.tablePath);
    CheckQuiet(options);
}

} // namespace host
