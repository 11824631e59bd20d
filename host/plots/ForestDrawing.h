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

/// Draws the texts in columns left and right of a frame. A row is one unit of the vertical axis high.
Picture DrawForest(const AnalysisData& data, const Forest& forest);

} // namespace host
