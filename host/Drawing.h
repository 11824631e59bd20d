#pragma once

#include "host/Picture.h"
#include "host/PictureFormat.h"

#include <string>
#include <vector>

namespace host {

struct DrawnPicture
{
    Picture picture;
    std::string bytes; ///< of the file; of SVG an element, without declaration
};

/// Pictures as far as they could be drawn.
struct Drawing
{
    std::vector<DrawnPicture> pictures;
    std::string failure; ///< a sentence; empty when all are drawn
};

/// Draws with the program gnuplot.
Drawing Draw(const std::vector<Picture>& pictures, PictureFormat format);

/// What stands in the file of a drawn picture, and the name of the file.
std::string FileContent(const DrawnPicture& drawn, PictureFormat format);
std::string FileName(const DrawnPicture& drawn, PictureFormat format);

} // namespace host
