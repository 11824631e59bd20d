#pragma once

#include "host/draw/Picture.h"
#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

/// L'Abbé plots of all studies, or of each group where there are groups; empty where the library has no
/// coordinates.
std::vector<Picture> LabbePictures(const AnalysisData& data);

} // namespace host
