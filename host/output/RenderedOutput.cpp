#include "host/output/RenderedOutput.h"

#include "host/cli/ReportOutputOptions.h"
#include "host/draw/Drawing.h"
#include "host/output/OutputPlaces.h"
#include "host/report/HtmlReport.h"
#include "host/report/TextReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace host {

namespace {

/// The path is "-" for standard output.
void Put(RenderedOutput& rendered, const std::string& path, std::string bytes)
{
    if (path == "-")
        rendered.text = std::move(bytes);
    else
        rendered.files.push_back({path, std::move(bytes)});
}

void AddPictures(RenderedOutput& rendered, const Options& options, const Drawing& drawing)
{
    const std::filesystem::path folder = *options.plotsFolder;
    for (const DrawnPicture& drawn : drawing.pictures)
        rendered.pictures.push_back({(folder / FileName(drawn.picture, options.plotFormat)).string(),
                                     FileContent(drawn, options.plotFormat)});
}

void AddSentences(RenderedOutput& rendered, const Drawing& drawing)
{
    for (const std::string& failure : drawing.failures)
        AddFailure(rendered.failures, failure);
    for (const std::string& note : drawing.notes)
        rendered.notes.push_back(note);
}

/// Renders the page and the files of the pictures.
void RenderPictures(RenderedOutput& rendered, const Options& options, const RunOutput& output,
                    const Report& report)
{
    if (!options.htmlPath && !options.plotsFolder)
        return;
    const std::vector<Picture> pictures = output.pictures ? output.pictures() : std::vector<Picture>();
    const DrawingMedium page = {.format = PictureFormat::SVG};
    const DrawingMedium files = {options.plotFormat, options.picture.size, options.picture.resolution};
    const Drawing ofPage = options.htmlPath ? Draw(pictures, page) : Drawing();
    AddSentences(rendered, ofPage);
    if (options.htmlPath)
        Put(rendered, *options.htmlPath, RenderHtml(options, report, ofPage));
    if (!options.plotsFolder)
        return;
    const bool isDrawn = options.htmlPath && files.format == page.format && !files.size;
    const Drawing ofFiles = isDrawn ? ofPage : Draw(pictures, files);
    AddSentences(rendered, ofFiles);
    AddPictures(rendered, options, ofFiles);
}

/// The names of pictures follow from the analysis, so that they cannot be checked before it.
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

} // namespace

void AddFailure(std::vector<std::string>& failures, const std::string& sentence)
{
    if (std::find(failures.begin(), failures.end(), sentence) == failures.end())
        failures.push_back(sentence);
}

RenderedOutput Render(const Options& options, const RunOutput& output)
{
    RenderedOutput rendered;
    if (options.jsonPath)
        Put(rendered, *options.jsonPath, output.json());
    if (output.status.IsError())
        return rendered;
    const Report report = output.report();
    if (WritesReportToStandardOutput(options))
        rendered.text = RenderText(report);
    else if (options.report.output)
        Put(rendered, *options.report.output, RenderText(report));
    if (options.report.tablePath)
        Put(rendered, *options.report.tablePath, output.table(TableKindOf(*options.report.tablePath)));
    RenderPictures(rendered, options, output, report);
    LeaveOutPicturesInUse(rendered, options);
    return rendered;
}

} // namespace host
