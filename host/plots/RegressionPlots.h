#pragma once

#include "host/draw/Picture.h"
#include "host/report/RegressionData.h"

#include <vector>

namespace host {

/// The forest plot of the studies with the fitted values, a bubble plot of each covariate, the plots of the
/// residuals, and those of influence when it is asked for. Empty without a used study.
std::vector<Picture> MakeRegressionPictures(const RegressionData& data);

} // namespace host
