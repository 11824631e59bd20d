#pragma once

#include "host/draw/Picture.h"
#include "host/plots/ForestRows.h"
#include "host/plots/ForestStyle.h"
#include "host/plots/ForestTexts.h"
#include "host/report/AnalysisData.h"
#include "host/run/ForestRequest.h"

#include <array>
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
    std::vector<std::string> notes; ///< on all studies
    bool hasColumns = false;        ///< those that --forest-columns or the layout has
};

/// What a forest plot needs to know of the analysis. It refers to the request, which must outlive it.
struct ForestScale
{
    Measure measure;
    EffectNames names;
    int decimals;     ///< of standard errors
    bool showsRatios; ///< whose sizes may differ by orders of magnitude
    double overall;   ///< where a line stands; missing for none
    const ForestRequest& request;
    const ForestStyle* style;
    std::array<std::string, 2> groupNames; ///< of treatment and control
    bool isRandom = false;                 ///< the model of the analysis
    bool hasBothModels = false;            ///< of fixed effect and random effects
};

/// The names that are asked for, or those of the layout.
std::array<std::string, 2> GroupNamesOf(const ForestRequest& request);

/// Draws the columns about a frame, in pages too where it is tall.
Picture DrawForest(const ForestScale& scale, const Forest& forest);
/// With a line at the overall effect.
Picture DrawForest(const AnalysisData& data, const Forest& forest);

} // namespace host
