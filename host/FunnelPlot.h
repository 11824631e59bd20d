#pragma once

#include "host/Picture.h"
#include "host/ReportSource.h"

#include <vector>

namespace host {

/// Funnel plots of all studies, with the imputed ones of trim-and-fill, and of each group.
std::vector<Picture> FunnelPictures(const ReportSource& source);

} // namespace host
