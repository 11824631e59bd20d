#include "host/draw/GnuplotTerminal.h"

#include "host/draw/GnuplotProcess.h"
#include "host/draw/PictureFit.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double PIXELS_AN_INCH = 96; // of a picture

} // namespace

Terminal TerminalOf(const Picture& picture, const DrawingMedium& medium, double scale)
{
    constexpr double POINTS = 0.75; // in a pixel
    const double width = scale * picture.width;
    const double height = scale * picture.height;
    switch (medium.format) {
    case PictureFormat::SVG:
        return {fmt::format("svg size {:.0f},{:.0f} noenhanced font 'sans-serif,{}' background '#ffffff'",
                            picture.width, picture.height, FONT_SIZE),
                4.5, false, false};
    case PictureFormat::PNG: {
        const double sharpness = ResolutionOf(picture, medium) / PIXELS_AN_INCH;
        return {fmt::format("pngcairo size {0:.0f},{1:.0f} noenhanced font 'sans-serif,{2}' fontscale {3} "
                            "pointscale {3} linewidth {3}",
                            sharpness * width, sharpness * height, POINTS * FONT_SIZE, sharpness * scale),
                3, true, true};
    }
    case PictureFormat::PDF: {
        const double points = POINTS * scale;
        return {fmt::format("pdfcairo size {:.4f},{:.4f} noenhanced font 'sans-serif,{}' fontscale {} "
                            "pointscale {} linewidth {}",
                            width * POINTS / 72, height * POINTS / 72, POINTS * FONT_SIZE, points, points,
                            2 * points),
                3, true, true};
    }
    }
    return {};
}

double ResolutionOf(const Picture& picture, const DrawingMedium& medium)
{
    constexpr double DEFAULT = 2 * PIXELS_AN_INCH;
    constexpr double MOST_PIXELS = 32767; // in a row or a column, for Cairo
    const auto [fitted, scale] = FittedTo(medium, picture);
    const double most = MOST_PIXELS * PIXELS_AN_INCH / (scale * std::max(fitted.width, fitted.height));
    // With less the letters could not be read.
    const double least = medium.resolution ? *medium.resolution : PIXELS_AN_INCH;
    if (most < least)
        throw DrawingFailure("it is too large for a PNG file; SVG and PDF files may be of any size");
    return medium.resolution ? least : std::floor(std::min(DEFAULT, most));
}

} // namespace host
