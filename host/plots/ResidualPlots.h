#pragma once

#include "host/draw/Picture.h"
#include "host/report/RegressionData.h"

#include <vector>

namespace host {

/// The funnel plot and the Galbraith plot of the residuals of a meta-regression; none of a single study.
std::vector<Picture> ResidualPictures(const RegressionData& data);

} // namespace host
