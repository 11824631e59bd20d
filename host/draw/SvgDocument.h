#pragma once

#include "host/draw/DrawingMedium.h"
#include "host/draw/Picture.h"

#include <optional>
#include <string>

namespace host {

/// gnuplot's drawing of a picture as an element that may stand alone in a file as well as beside others in a
/// page: its title and description are the picture's, its identifiers are its own. With a size it is shown at
/// that. Throws DrawingFailure when it is no SVG.
std::string SvgElement(const std::string& drawing, const Picture& picture,
                       const std::optional<PictureSize>& size = {});

/// The element as a file of its own.
std::string SvgFile(const std::string& element);

} // namespace host
