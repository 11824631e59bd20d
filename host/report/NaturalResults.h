#pragma once

#include "host/run/Analysis.h"
#include "host/text/Measures.h"
#include "host/text/NumberFormat.h"

#include <optional>
#include <vector>

namespace host {

/// Results on the natural scale, where that is not the scale of the analysis: ratios, proportions, rates.
struct NaturalResults
{
    /// Per group and step of a cumulative analysis.
    struct Steps
    {
        std::vector<std::vector<double>> values;
        std::vector<std::vector<double>> lower;
        std::vector<std::vector<double>> upper;
    };

    Estimates studies;
    Estimates models;
    Estimates predictions; ///< limits alone
    Estimates leaveOneOut;
    Estimates filled;    ///< the model of trim-and-fill
    Estimates contrasts; ///< of ratios; empty for others, whose sums are none of their values
    Steps cumulative;
};

std::optional<NaturalResults> NaturalResultsOf(const Analysis& analysis, const Measure& measure);

} // namespace host
