#pragma once

#include "host/draw/Picture.h"
#include "host/draw/PictureFormat.h"

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
    std::vector<DrawnPicture> pictures = {};
    std::vector<std::string> failures = {}; ///< a sentence for each other one, or one for all
};

/// Draws with the program gnuplot. One picture that fails leaves the others.
Drawing Draw(const std::vector<Picture>& pictures, PictureFormat format);

/// What stands in the file of a drawn picture, and the name of the file.
std::string FileContent(const DrawnPicture& drawn, PictureFormat format);
std::string FileName(const Picture& picture, PictureFormat format);

} // namespace host
