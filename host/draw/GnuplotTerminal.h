#pragma once

#include "host/draw/DrawingMedium.h"
#include "host/draw/Picture.h"

#include <string>

namespace host {

/// The resolution of the picture's PNG file: that which is asked for, else 192, or as much as the format
/// allows. Throws DrawingFailure when no file of the format can hold it.
double ResolutionOf(const Picture& picture, const DrawingMedium& medium);

/// The terminals of cairo measure fonts in points of 1/72 inch and count 3 pixels to a point size, that of
/// SVG measures in pixels and counts 4.5.
struct Terminal
{
    std::string command;
    double pixelsPerPointSize;
    bool drawsLetters; ///< with the installed fonts; in an SVG, whoever shows it does
    bool slantsStarts; ///< of lines: cairo's terminals cut the first end of a path aslant
};

/// The terminal for a picture of `scale` times its size.
Terminal TerminalOf(const Picture& picture, const DrawingMedium& medium, double scale);

} // namespace host
