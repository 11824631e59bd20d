#pragma once

#include "host/draw/Picture.h"
#include "host/run/Analysis.h"
#include "host/run/AnalysisRequest.h"

#include <vector>

namespace host {

/// All plots that the library has coordinates for. The analysis must have ended without error.
std::vector<Picture> MakePictures(const AnalysisRequest& request, const Analysis& analysis);

} // namespace host
