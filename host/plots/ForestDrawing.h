#pragma once

#include "host/draw/Picture.h"
#include "host/plots/ForestRows.h"
#include "host/report/AnalysisData.h"

#include <string>
#include <vector>

namespace host {

/// The content of a forest plot.
struct Forest
{
    std::string name;
    std::string title;
    std::string description;
    std::string remarkHeader; ///< empty when the rows have no remarks
    bool hasWeights;
    std::vector<ForestRow> rows;
    std::vector<std::string> notes; ///< lines below the axis
};

/// What a forest plot needs to know of the analysis.
struct ForestScale
{
    Measure measure;
    std::string effectHeader; ///< "OR [95% CI]"
    int decimals;             ///< of effects
    bool showsRatios;         ///< whose sizes may differ by orders of magnitude
    double overall;           ///< where a line stands; missing for none
};

/// Draws the texts in columns left and right of a frame. A row is one unit of the vertical axis high.
Picture DrawForest(const ForestScale& scale, const Forest& forest);
/// With a line at the overall effect.
Picture DrawForest(const AnalysisData& data, const Forest& forest);

} // namespace host
