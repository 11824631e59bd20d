#pragma once

#include "host/Picture.h"
#include "host/ReportSource.h"

#include <vector>

namespace host {

/// Galbraith plots of all studies and of each group.
std::vector<Picture> GalbraithPictures(const ReportSource& source);

} // namespace host
