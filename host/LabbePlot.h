#pragma once

#include "host/Picture.h"
#include "host/ReportSource.h"

#include <vector>

namespace host {

/// L'Abbé plots: of all studies, or with groups of each. None where the library has no coordinates for them.
std::vector<Picture> LabbePictures(const ReportSource& source);

} // namespace host
