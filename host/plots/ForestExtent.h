#pragma once

#include "host/plots/ForestRows.h"
#include "host/plots/PlotAxes.h"

#include <utility>
#include <vector>

namespace host {

/// The range of the effects and their intervals, which are cut where they are several times as long as is
/// typical. It has the place of no effect, if there is one and the range is not many times as long with it.
Extent EffectExtent(const std::vector<ForestRow>& rows, bool hasNoEffect);

/// The range between limits on the natural scale. Throws UnusableInput for limits that no ratio has.
Extent ExtentBetween(const std::pair<double, double>& limits, bool areRatios);

} // namespace host
