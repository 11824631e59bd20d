#pragma once

#include "host/draw/Picture.h"
#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

/// The forest plot, and that of the cumulative analysis if there is one.
std::vector<Picture> ForestPictures(const AnalysisData& data);

} // namespace host
