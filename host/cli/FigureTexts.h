#pragma once

#include "host/draw/DrawingMedium.h"

#include <string>
#include <string_view>
#include <utility>

namespace host {

// Arguments of the options of pictures. What cannot be read throws UnusableInput.

/// "LEFT,RIGHT".
std::pair<std::string, std::string> ParseTextPair(std::string_view text);

/// "LOW,HIGH", two numbers in ascending order.
std::pair<double, double> ParseLimits(std::string_view text);

/// "WIDTHxHEIGHT" or "WIDTH", with a unit behind: px (of 1/96 inch, as without), pt, mm, cm or in.
PictureSize ParseSize(std::string_view text);

} // namespace host
