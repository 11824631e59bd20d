#pragma once

#include "host/Picture.h"
#include "host/ReportSource.h"

#include <vector>

namespace host {

/// A bubble plot of each covariate whose regression could be fitted.
std::vector<Picture> BubblePictures(const ReportSource& source);

} // namespace host
