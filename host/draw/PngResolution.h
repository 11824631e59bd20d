#pragma once

#include <string>

namespace host {

/// The PNG file with its resolution in pixels an inch, by which programs that lay out pages know its size.
std::string WithResolution(const std::string& png, double pixelsAnInch);

} // namespace host
