#pragma once

#include "host/draw/Picture.h"
#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

/// Galbraith plots of all studies and of each group.
std::vector<Picture> GalbraithPictures(const AnalysisData& data);

} // namespace host
