#pragma once

#include "host/draw/Picture.h"
#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

/// Funnel plots of all studies, with the imputed ones of trim-and-fill, and of each group.
std::vector<Picture> FunnelPictures(const AnalysisData& data);

} // namespace host
