#pragma once

#include "host/Analysis.h"
#include "host/Picture.h"
#include "host/Request.h"

#include <vector>

namespace host {

/// Every plot that the library has coordinates for, of an analysis that ended without error.
std::vector<Picture> MakePictures(const Request& request, const Analysis& analysis);

} // namespace host
