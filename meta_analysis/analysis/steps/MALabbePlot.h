#pragma once

#include "meta_analysis/analysis/studies/MAStudies.h"

#include <vector>

namespace MA_NAMESPACE {

/// A study in a L'Abbé plot.
struct MALabbePoint
{
    double x; ///< outcome of the control group
    double y; ///< outcome of the treatment group
    double weight;
};

/// The plot of the selected studies. L'Abbé, Detsky and O'Rourke (1987), Annals of Internal Medicine 107,
/// 224-233.
inline std::vector<MALabbePoint> PlotLabbe(const MAStudies& studies, const std::vector<double>& weights,
                                           const MASelection& selection)
{
    std::vector<MALabbePoint> plot;
    plot.reserve(selection.size());
    for (const std::size_t study : selection)
        plot.push_back(
            {studies.groupOutcomes[study].control, studies.groupOutcomes[study].treatment, weights[study]});
    return plot;
}

} // namespace MA_NAMESPACE
