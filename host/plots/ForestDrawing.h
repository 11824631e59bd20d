#pragma once

#include "host/draw/Picture.h"
#include "host/plots/ForestRows.h"
#include "host/report/AnalysisData.h"

#include <string>
#include <vector>

namespace host {

/// What a forest plot is made of.
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

/// Texts in columns left and right of a frame with a unit of height for each row.
Picture DrawForest(const AnalysisData& data, const Forest& forest);

} // namespace host
