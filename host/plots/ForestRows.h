#pragma once

#include "host/report/AnalysisData.h"

#include <string>
#include <vector>

namespace host {

/// An estimate with its interval.
struct ForestInterval
{
    double estimate;
    double lower;
    double upper;
};

/// A line of a forest plot.
struct ForestRow
{
    enum class Kind
    {
        HEADING, ///< has a label alone
        STUDY,
        POOLED,
        PREDICTION, ///< the estimate is the centre, and not shown
        GAP         ///< has nothing
    };

    Kind kind;
    std::string label = {};
    std::string remark = {};   ///< beside the label
    ForestInterval place = {}; ///< on the scale of the analysis
    ForestInterval shown = {}; ///< on the natural scale
    double weight = 1;         ///< of a study, as a fraction of all
};

/// Every study with its effect, in blocks where there are groups, each with its pooled model; then the model
/// of all studies.
std::vector<ForestRow> ForestRows(const AnalysisData& data);

/// The pooled effect after each study of the cumulative analysis, in blocks likewise. Empty without one.
std::vector<ForestRow> CumulativeForestRows(const AnalysisData& data);

} // namespace host
