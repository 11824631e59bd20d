#include "host/Output.h"

#include "host/Drawing.h"
#include "host/HtmlReport.h"
#include "host/JsonReport.h"
#include "host/Plots.h"
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

struct OutputFile
{
    std::string path;
    std::string bytes;
};

/// The page and the pictures.
struct RenderedFiles
{
    std::vector<OutputFile> files;
    std::string failure; ///< a sentence; empty when all pictures are drawn
};

RenderedFiles RenderFiles(const Options& options, const RunOutput& output, const Report& report)
{
    RenderedFiles rendered;
    if (!options.htmlPath && !options.plotsFolder)
        return rendered;
    const std::vector<Picture> pictures = output.pictures ? output.pictures() : std::vector<Picture>();
    const bool wantsSvg = options.htmlPath || options.plotFormat == PictureFormat::SVG;
    const Drawing svg = wantsSvg ? Draw(pictures, PictureFormat::SVG) : Drawing();
    rendered.failure = svg.failure;
    if (options.htmlPath)
        rendered.files.push_back({*options.htmlPath, RenderHtml(options, report, svg)});
    if (options.plotsFolder) {
        const PictureFormat format = options.plotFormat;
        const Drawing drawing = format == PictureFormat::SVG ? svg : Draw(pictures, format);
        rendered.failure = drawing.failure;
        const std::filesystem::path folder = *options.plotsFolder;
        for (const DrawnPicture& drawn : drawing.pictures)
            rendered.files.push_back(
                {(folder / FileName(drawn, format)).string(), FileContent(drawn, format)});
    }
    return rendered;
}

void MakeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw UnusableInput(fmt::format("'{}' cannot be made: {}.", folder, error.message()));
}

bool IsSameFile(const std::string& one, const std::string& other)
{
    std::error_code noSuchFile;
    return one == other || std::filesystem::equivalent(one, other, noSuchFile);
}

} // namespace

void CheckOutputPlaces(const Options& options)
{
    if (options.jsonPath && IsSameFile(*options.jsonPath, options.dataPath))
        throw UnusableInput(fmt::format("--json: '{}' is the data file.", *options.jsonPath));
    if (options.htmlPath && IsSameFile(*options.htmlPath, options.dataPath))
        throw UnusableInput(fmt::format("--html: '{}' is the data file.", *options.htmlPath));
    if (options.htmlPath && options.jsonPath && IsSameFile(*options.htmlPath, *options.jsonPath))
        throw UnusableInput(fmt::format("--html: '{}' is the file of --json.", *options.htmlPath));
    std::error_code noSuchFile;
    const auto status = std::filesystem::status(options.plotsFolder.value_or("."), noSuchFile);
    if (std::filesystem::exists(status) && !std::filesystem::is_directory(status))
        throw UnusableInput(fmt::format("--plots: '{}' is no folder.", *options.plotsFolder));
}

ExitStatus WriteOutput(const Options& options, const RunOutput& output)
{
    const bool isError = output.status.IsError();
    const Report report = isError ? Report() : output.report();
    const bool showsReport = !isError && !WritesJsonToStandardOutput(options);
    const std::string text = showsReport ? RenderText(report) : "";
    const RenderedFiles rendered = isError ? RenderedFiles() : RenderFiles(options, output, report);
    if (options.jsonPath)
        WriteJson(options, output.json());
    if (options.plotsFolder && !isError)
        MakeFolder(*options.plotsFolder);
    for (const OutputFile& file : rendered.files)
        WriteFile(file.path, file.bytes);
    WriteStandardOutput(text);
    const KXStatus& status = isError ? output.status : output.furtherStatus;
    if (status.IsError())
        WriteLibraryError(status.GetCode());
    if (!rendered.failure.empty())
        throw UnusableInput(rendered.failure);
    return status.IsError() ? EXIT_LIBRARY_ERROR : EXIT_RAN;
}

ExitStatus WriteOutput(const Options& options, const DataTable& table, const Request& request,
                       const Analysis& analysis)
{
    return WriteOutput(options,
                       {analysis.status, [&] { return MakeReport(options, table, request, analysis); },
                        [&] { return RenderJson(options, table, analysis); }, analysis.FinalStatus(),
                        [&] { return MakePictures(request, analysis); }});
}

void WriteStandardOutput(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        FailToWrite("Standard output");
}

} // namespace host
