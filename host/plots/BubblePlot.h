#pragma once

#include "host/draw/Picture.h"
#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

/// A bubble plot of each covariate whose regression could be fitted.
std::vector<Picture> BubblePictures(const AnalysisData& data);

} // namespace host
