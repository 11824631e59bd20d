#include "host/cli/OutputOptions.h"

#include "host/cli/OptionKinds.h"
#include "host/cli/ReportOutputOptions.h"

#include <optional>
#include <string>
#include <utility>

namespace host {

namespace {

OptionDefinition OutputOption(const char* name, const char* argument, const char* help,
                              std::optional<std::string>& place, const char* shortName = "")
{
    return {.name = name,
            .shortName = shortName,
            .argument = argument,
            .help = help,
            .heading = "Output",
            .store = [&place](const std::string& text) { place = text; },
            .value = {}};
}

OptionDefinition PlotFormatOption(Options& options)
{
    return {
        .name = "plot-format",
        .argument = "NAME",
        .help =
            fmt::format("kind of the files of --plots: {} (default svg)", NamesOf(PICTURE_FORMAT_CHOICES)),
        .heading = "Output",
        .choices = ListOfNames(PICTURE_FORMAT_CHOICES),
        .store = [&options](
                     const std::string& text) { options.plotFormat = ValueOf(PICTURE_FORMAT_CHOICES, text); },
        .value = {}};
}

constexpr Domain FEW_THREADS = {[](double x) { return x >= 0 && x <= 1024; }, "from 0 to 1024"};

OptionDefinitions BatchOutput(BatchOptions& batch)
{
    const std::string columns =
        fmt::format("results to write, separated by commas: {} (default all)", NamesOf(BATCH_COLUMNS));
    return {
        OutputOption("output", "FILE", "write the results to this file; - for standard output, as without",
                     batch.output, "o"),
        {.name = "columns",
         .argument = "LIST",
         .help = columns,
         .heading = "Output",
         .store = [&batch](const std::string& text) { batch.columns = ParseBatchColumns(text); },
         .value = {}},
        OutputOption("rejects", "FILE", "write the rows that are left out, with their reasons",
                     batch.rejects),
        {.name = "threads",
         .argument = "COUNT",
         .help = fmt::format("threads, which change no result; 0 for one a processor (default {})",
                             batch.threadCount),
         .heading = "Output",
         .store =
             [&batch](const std::string& text) {
                 batch.threadCount = RequireInside(FEW_THREADS, ParseWholeNumber(text));
             },
         .value = {}},
    };
}

} // namespace

OptionDefinitions OutputOptions(Options& options)
{
    if (options.command == Command::BATCH)
        return BatchOutput(options.batch);
    OptionDefinitions output = {
        OutputOption("json", "FILE", "write all results as JSON; - for standard output, without report",
                     options.jsonPath),
        OutputOption("html", "FILE", "write one page with tables and pictures; - as above", options.htmlPath),
        OutputOption("plots", "FOLDER", "write a picture of each plot into the folder", options.plotsFolder),
        PlotFormatOption(options)};
    for (OptionDefinition& option : ReportOutputOptions(options.report))
        output.push_back(std::move(option));
    return output;
}

} // namespace host
