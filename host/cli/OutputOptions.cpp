#include "host/cli/OutputOptions.h"

#include <optional>
#include <string>

namespace host {

namespace {

OptionDefinition OutputOption(const char* name, const char* argument, const char* help,
                              std::optional<std::string>& place)
{
    return {.name = name,
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
        .store = [&options](
                     const std::string& text) { options.plotFormat = ValueOf(PICTURE_FORMAT_CHOICES, text); },
        .value = {}};
}

} // namespace

OptionDefinitions OutputOptions(Options& options)
{
    return {
        OutputOption("json", "FILE", "write all results as JSON; - for standard output, without report",
                     options.jsonPath),
        OutputOption("html", "FILE", "write one page with tables and pictures", options.htmlPath),
        OutputOption("plots", "FOLDER", "write a picture of each plot into the folder", options.plotsFolder),
        PlotFormatOption(options)};
}

} // namespace host
