#pragma once

#include "host/draw/DrawingMedium.h"
#include "host/draw/Picture.h"

#include <string>
#include <vector>

namespace host {

struct DrawnPicture
{
    Picture picture;
    std::string bytes; ///< of the file; of SVG an element, without declaration
};

/// The pictures that could be drawn, and what is wrong with the others.
struct Drawing
{
    std::vector<DrawnPicture> pictures = {};
    std::vector<std::string> failures = {}; ///< a sentence for each other one, or one for all
    std::vector<std::string> notes = {};    ///< sentences about what the drawn ones lack
};

/// Draws with the program gnuplot, as many pictures at once as there are processors. One that fails, or takes
/// too long, leaves the others.
Drawing Draw(const std::vector<Picture>& pictures, const DrawingMedium& medium);

/// The content and the name of the file of a drawn picture.
std::string FileContent(const DrawnPicture& drawn, PictureFormat format);
std::string FileName(const Picture& picture, PictureFormat format);

} // namespace host
