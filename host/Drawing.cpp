#include "host/Drawing.h"

#include "host/Choices.h"
#include "host/Gnuplot.h"
#include "host/GnuplotProcess.h"
#include "host/SvgDocument.h"

#include <fmt/format.h>

#include <utility>

namespace host {

Drawing Draw(const std::vector<Picture>& pictures, PictureFormat format)
{
    Drawing drawing;
    try {
        for (const Picture& picture : pictures) {
            std::string bytes = RunGnuplot(GnuplotScript(picture, format));
            if (format == PictureFormat::SVG)
                bytes = SvgElement(bytes, picture);
            drawing.pictures.push_back({picture, std::move(bytes)});
        }
    } catch (const DrawingFailure& failure) {
        drawing.failure = failure.what();
    }
    return drawing;
}

std::string FileContent(const DrawnPicture& drawn, PictureFormat format)
{
    return format == PictureFormat::SVG ? SvgFile(drawn.bytes) : drawn.bytes;
}

std::string FileName(const DrawnPicture& drawn, PictureFormat format)
{
    return fmt::format("{}.{}", drawn.picture.name, NameOf(PICTURE_FORMAT_CHOICES, format));
}

} // namespace host
