#include "host/Output.h"

#include "host/JsonReport.h"
#include "host/ProgramInfo.h"
#include "host/StatusText.h"
#include "host/TextReport.h"
#include "host/UnusableInput.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace host {

namespace {

[[noreturn]] void FailToWrite(const std::string& place)
{
    throw UnusableInput(fmt::format("{} cannot be written: {}.", place, std::strerror(errno)));
}

void WriteFile(const std::string& path, const std::string& text)
{
    const std::string place = fmt::format("'{}'", path);
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        FailToWrite(place);
    const bool isTaken = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if (std::fclose(file) != 0 || !isTaken)
        FailToWrite(place);
}

bool WritesJsonToStandardOutput(const Options& options)
{
    return options.jsonPath == "-";
}

void WriteJson(const Options& options, const std::string& json)
{
    if (WritesJsonToStandardOutput(options))
        WriteStandardOutput(json);
    else
        WriteFile(*options.jsonPath, json);
}

void WriteLibraryError(int code)
{
    std::fputs(fmt::format("{}: error {}: {}\n", PROGRAM_NAME, code, SentenceOf(code)).c_str(), stderr);
}

} // namespace

void CheckOutputPlaces(const Options& options)
{
    std::error_code noSuchFile;
    if (options.jsonPath && std::filesystem::equivalent(*options.jsonPath, options.dataPath, noSuchFile))
        throw UnusableInput(fmt::format("--json: '{}' is the data file.", *options.jsonPath));
}

ExitStatus WriteOutput(const Options& options, const RunOutput& output)
{
    const bool isError = output.status.IsError();
    const bool hasReport = !isError && !WritesJsonToStandardOutput(options);
    const std::string report = hasReport ? RenderText(output.report()) : "";
    if (options.jsonPath)
        WriteJson(options, output.json());
    WriteStandardOutput(report);
    const KXStatus& status = isError ? output.status : output.furtherStatus;
    if (!status.IsError())
        return EXIT_RAN;
    WriteLibraryError(status.GetCode());
    return EXIT_LIBRARY_ERROR;
}

ExitStatus WriteOutput(const Options& options, const DataTable& table, const Request& request,
                       const Analysis& analysis)
{
    return WriteOutput(options,
                       {analysis.status, [&] { return MakeReport(options, table, request, analysis); },
                        [&] { return RenderJson(options, table, analysis); }, analysis.FinalStatus()});
}

void WriteStandardOutput(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        FailToWrite("Standard output");
}

} // namespace host
