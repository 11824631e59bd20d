#include "host/Output.h"

#include "host/draw/Drawing.h"
#include "host/plots/Plots.h"
#include "host/report/HtmlReport.h"
#include "host/report/JsonReport.h"
#include "host/report/TextReport.h"
#include "host/text/ProgramInfo.h"
#include "host/text/StatusText.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
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

void WriteLibraryError(int code)
{
    WriteToStandardError(fmt::format("error {}: {}", code, SentenceOf(code)).c_str());
}

struct OutputFile
{
    std::string path;
    std::string bytes;
};

/// All that a run writes.
struct RenderedOutput
{
    std::string text; ///< of standard output
    std::vector<OutputFile> files = {};
    std::vector<OutputFile> pictures = {};
    std::vector<std::string> failures = {}; ///< a sentence for each thing that is missing
};

void AddFailure(std::vector<std::string>& failures, const std::string& sentence)
{
    if (std::find(failures.begin(), failures.end(), sentence) == failures.end())
        failures.push_back(sentence);
}

void AddPictures(RenderedOutput& rendered, const Options& options, const Drawing& drawing)
{
    const std::filesystem::path folder = *options.plotsFolder;
    for (const DrawnPicture& drawn : drawing.pictures)
        rendered.pictures.push_back({(folder / FileName(drawn.picture, options.plotFormat)).string(),
                                     FileContent(drawn, options.plotFormat)});
}

/// The page and the pictures.
void RenderPictures(RenderedOutput& rendered, const Options& options, const RunOutput& output,
                    const Report& report)
{
    if (!options.htmlPath && !options.plotsFolder)
        return;
    const std::vector<Picture> pictures = output.pictures ? output.pictures() : std::vector<Picture>();
    std::map<PictureFormat, Drawing> drawings;
    if (options.htmlPath)
        drawings[PictureFormat::SVG] = Draw(pictures, PictureFormat::SVG);
    if (options.plotsFolder && drawings.count(options.plotFormat) == 0)
        drawings[options.plotFormat] = Draw(pictures, options.plotFormat);
    for (const auto& [format, drawing] : drawings)
        for (const std::string& failure : drawing.failures)
            AddFailure(rendered.failures, failure);
    if (options.htmlPath)
        rendered.files.push_back(
            {*options.htmlPath, RenderHtml(options, report, drawings[PictureFormat::SVG])});
    if (options.plotsFolder)
        AddPictures(rendered, options, drawings[options.plotFormat]);
}

RenderedOutput Render(const Options& options, const RunOutput& output)
{
    RenderedOutput rendered;
    if (WritesJsonToStandardOutput(options))
        rendered.text = output.json();
    else if (options.jsonPath)
        rendered.files.push_back({*options.jsonPath, output.json()});
    if (output.status.IsError())
        return rendered;
    const Report report = output.report();
    if (!WritesJsonToStandardOutput(options))
        rendered.text = RenderText(report);
    RenderPictures(rendered, options, output, report);
    return rendered;
}

/// The absolute path behind all links, as far as they can be read.
std::filesystem::path CanonicalPath(const std::string& path)
{
    std::error_code unreadable;
    const std::filesystem::path absolute = std::filesystem::absolute(path, unreadable);
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(absolute, unreadable);
    const std::filesystem::path found = unreadable ? absolute.lexically_normal() : canonical;
    return found.has_filename() ? found : found.parent_path(); // "folder/" is "folder"
}

/// Whether the paths lead to one file, be it there already or not.
bool IsSameFile(const std::string& one, const std::string& other)
{
    std::error_code noSuchFile;
    return CanonicalPath(one) == CanonicalPath(other) || std::filesystem::equivalent(one, other, noSuchFile);
}

/// What else than a picture the path leads to; empty for nothing.
std::string OtherUseOf(const std::string& path, const Options& options)
{
    if (IsSameFile(path, options.dataPath))
        return "the data file";
    if (options.jsonPath && !WritesJsonToStandardOutput(options) && IsSameFile(path, *options.jsonPath))
        return "the file of --json";
    if (options.htmlPath && IsSameFile(path, *options.htmlPath))
        return "the file of --html";
    return {};
}

/// The names of pictures follow from the analysis, so that none could be checked before.
void LeaveOutPicturesInUse(RenderedOutput& rendered, const Options& options)
{
    std::erase_if(rendered.pictures, [&](const OutputFile& picture) {
        const std::string use = OtherUseOf(picture.path, options);
        if (!use.empty())
            rendered.failures.push_back(
                fmt::format("The picture '{}' is not written: that is {}.", picture.path, use));
        return !use.empty();
    });
}

void MakeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw UnusableInput(fmt::format("'{}' cannot be made: {}.", folder, error.message()));
}

/// Whether `write` went well; if not, its sentence joins the failures.
template <class Write>
bool Try(std::vector<std::string>& failures, const Write& write)
{
    try {
        write();
        return true;
    } catch (const UnusableInput& problem) {
        AddFailure(failures, problem.what());
        return false;
    }
}

/// What cannot be written leaves the rest.
void Write(RenderedOutput& rendered, const Options& options)
{
    std::vector<std::string>& failures = rendered.failures;
    Try(failures, [&] { WriteStandardOutput(rendered.text); });
    for (const OutputFile& file : rendered.files)
        Try(failures, [&] { WriteFile(file.path, file.bytes); });
    if (rendered.pictures.empty() || !Try(failures, [&] { MakeFolder(*options.plotsFolder); }))
        return;
    for (const OutputFile& file : rendered.pictures)
        Try(failures, [&] { WriteFile(file.path, file.bytes); });
}

/// The first ones, for hundreds of pictures may have one cause.
void WriteFailures(const std::vector<std::string>& failures)
{
    constexpr std::size_t MOST_SENTENCES = 10;
    const std::size_t count = std::min(failures.size(), MOST_SENTENCES);
    for (std::size_t i = 0; i < count; ++i)
        WriteToStandardError(failures[i].c_str());
    if (count < failures.size())
        WriteToStandardError(
            fmt::format("{} more things are missing likewise.", failures.size() - count).c_str());
}

void RequireFolderOf(const char* option, const std::string& path)
{
    std::error_code noSuchFile;
    const std::filesystem::path folder = std::filesystem::absolute(path, noSuchFile).parent_path();
    if (!std::filesystem::is_directory(folder, noSuchFile))
        throw UnusableInput(fmt::format("{}: '{}' cannot be written: there is no folder '{}'.", option, path,
                                        folder.string()));
}

/// Nothing is lost when a file cannot be written, but a misspelt place can be told before the analysis.
void CheckFile(const char* option, const std::string& path, const Options& options)
{
    if (IsSameFile(path, options.dataPath))
        throw UnusableInput(fmt::format("{}: '{}' is the data file.", option, path));
    if (options.plotsFolder && IsSameFile(path, *options.plotsFolder))
        throw UnusableInput(fmt::format("{}: '{}' is the folder of --plots.", option, path));
    RequireFolderOf(option, path);
}

} // namespace

void CheckOutputPlaces(const Options& options)
{
    if (options.jsonPath && !WritesJsonToStandardOutput(options))
        CheckFile("--json", *options.jsonPath, options);
    if (options.htmlPath)
        CheckFile("--html", *options.htmlPath, options);
    if (options.htmlPath && options.jsonPath && IsSameFile(*options.htmlPath, *options.jsonPath))
        throw UnusableInput(fmt::format("--html: '{}' is the file of --json.", *options.htmlPath));
    std::error_code noSuchFile;
    const auto status = std::filesystem::status(options.plotsFolder.value_or("."), noSuchFile);
    if (std::filesystem::exists(status) && !std::filesystem::is_directory(status))
        throw UnusableInput(fmt::format("--plots: '{}' is no folder.", *options.plotsFolder));
}

ExitStatus WriteOutput(const Options& options, const RunOutput& output)
{
    RenderedOutput rendered = Render(options, output);
    LeaveOutPicturesInUse(rendered, options);
    Write(rendered, options);
    const KXStatus& status = output.status.IsError() ? output.status : output.furtherStatus;
    if (status.IsError())
        WriteLibraryError(status.GetCode());
    WriteFailures(rendered.failures);
    if (!rendered.failures.empty())
        return EXIT_UNUSABLE;
    return status.IsError() ? EXIT_LIBRARY_ERROR : EXIT_RAN;
}

ExitStatus WriteOutput(const Options& options, const DataTable& table, const AnalysisRequest& request,
                       const Analysis& analysis)
{
    return WriteOutput(options,
                       {analysis.status, [&] { return MakeReport(options, table, request, analysis); },
                        [&] { return RenderJson(options, table, request, analysis); }, analysis.FinalStatus(),
                        [&] { return MakePictures(request, analysis); }});
}

void WriteStandardOutput(const std::string& text)
{
    const bool isWritten =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!isWritten && errno != EPIPE)
        FailToWrite("Standard output");
}

void WriteToStandardError(const char* sentence) noexcept
{
    std::fprintf(stderr, "%s: %s\n", PROGRAM_NAME, sentence);
}

} // namespace host
