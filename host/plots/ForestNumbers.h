#pragma once

#include "host/plots/ForestDrawing.h"
#include "host/plots/ForestRows.h"

#include <string>

namespace host {

/// How the numbers of a column of estimates are written.
struct ForestNumbers
{
    int decimals;
    bool areRatios;
    double large; ///< where the numbers are cut to two digits and a power of ten
};

/// Differences that are large as a rule are written out, so that a column has one notation.
ForestNumbers NumbersOf(const ForestScale& scale, const Forest& forest);

/// A ratio too small for the decimals is shown as below the smallest that they show, because 0.00 is none.
std::string NumberText(double value, const ForestNumbers& numbers);

} // namespace host
