#pragma once

#include "host/draw/DrawingMedium.h"
#include "host/draw/Picture.h"

namespace host {

/// A picture whose shape is that of the medium, and the factor that gives it its size there.
struct FittedPicture
{
    Picture picture;
    double scale;
};

/// The picture in the middle of a canvas with the shape that is asked for, in pages where the format has
/// these. Nothing in it is distorted.
FittedPicture FittedTo(const DrawingMedium& medium, Picture whole);

} // namespace host
