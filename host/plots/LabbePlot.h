#pragma once

#include "host/draw/Picture.h"
#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

/// L'Abbé plots: of all studies, or with groups of each. None where the library has no coordinates for them.
std::vector<Picture> LabbePictures(const AnalysisData& data);

} // namespace host
