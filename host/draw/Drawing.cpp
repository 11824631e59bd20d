#include "host/draw/Drawing.h"

#include "host/draw/GnuplotProcess.h"
#include "host/draw/GnuplotScript.h"
#include "host/draw/GnuplotTerminal.h"
#include "host/draw/LettersWithoutFont.h"
#include "host/draw/PngResolution.h"
#include "host/draw/SvgDocument.h"
#include "host/system/Progress.h"
#include "host/system/TaskPool.h"

#include <fmt/format.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace host {

namespace {

/// The first and the last bytes of the files of a binary format.
struct Signature
{
    std::string_view start;
    std::string_view end;
};

void RequireWholeFile(std::string_view bytes, const Signature& signature, PictureFormat format)
{
    if (!bytes.starts_with(signature.start) || !bytes.ends_with(signature.end))
        throw DrawingFailure(
            fmt::format("gnuplot wrote no whole {} file", NameOf(PICTURE_FORMAT_CHOICES, format)));
}

DrawnPicture DrawOne(const Picture& picture, const DrawingMedium& medium)
{
    const PictureFormat format = medium.format;
    std::string bytes = RunGnuplot(GnuplotScript(picture, medium));
    switch (format) {
    case PictureFormat::SVG:
        bytes = SvgElement(bytes, picture, medium.size);
        break;
    case PictureFormat::PNG:
        RequireWholeFile(bytes, {"\x89PNG\r\n\x1A\n", "IEND\xAE\x42\x60\x82"}, format);
        bytes = WithResolution(bytes, ResolutionOf(picture, medium));
        break;
    case PictureFormat::PDF:
        RequireWholeFile(bytes, {"%PDF-", "%%EOF\n"}, format);
        break;
    }
    return {picture, std::move(bytes)};
}

} // namespace

Drawing Draw(const std::vector<Picture>& pictures, const DrawingMedium& medium)
{
    Drawing drawing;
    Progress progress("Drawing");
    std::vector<DrawnPicture> drawn(pictures.size());
    std::atomic<long> started = 0;
    TaskPool pool(0); // behind all that its threads write to
    std::vector<std::shared_ptr<Task>> tasks;
    for (std::size_t i = 0; i < pictures.size(); ++i)
        tasks.push_back(pool.Start([&, i] {
            progress.Show("Drawing picture", ++started, static_cast<long>(pictures.size()));
            drawn[i] = DrawOne(pictures[i], medium);
        }));
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        try {
            pool.Finish(tasks[i]);
            drawing.pictures.push_back(std::move(drawn[i]));
        } catch (const NoGnuplot& failure) {
            drawing.failures.push_back(fmt::format("Pictures could not be drawn: {}.", failure.what()));
            break;
        } catch (const DrawingFailure& failure) {
            drawing.failures.push_back(fmt::format("The picture {} could not be drawn: {}.",
                                                   FileName(pictures[i], medium.format), failure.what()));
        }
    }
    if (medium.format != PictureFormat::SVG) // whoever shows an SVG draws its letters
        drawing.notes = NotesOnFonts(pictures);
    return drawing;
}

std::string FileContent(const DrawnPicture& drawn, PictureFormat format)
{
    return format == PictureFormat::SVG ? SvgFile(drawn.bytes) : drawn.bytes;
}

std::string FileName(const Picture& picture, PictureFormat format)
{
    return fmt::format("{}.{}", picture.name, NameOf(PICTURE_FORMAT_CHOICES, format));
}

} // namespace host
