#pragma once

#include "host/Picture.h"
#include "host/ReportSource.h"

#include <vector>

namespace host {

/// The forest plot, and that of the cumulative analysis if there is one.
std::vector<Picture> ForestPictures(const ReportSource& source);

} // namespace host
