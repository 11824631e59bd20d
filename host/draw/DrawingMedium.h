#pragma once

#include "host/draw/PictureFormat.h"

#include <optional>

namespace host {

/// The size of a file's picture, in pixels of 1/96 inch.
struct PictureSize
{
    double width;
    std::optional<double> height; ///< that which follows from the picture's shape, without
};

/// What pictures are drawn on.
struct DrawingMedium
{
    PictureFormat format;
    std::optional<PictureSize> size = {};
    std::optional<int> resolution = {}; ///< of PNG, in pixels an inch
};

} // namespace host
