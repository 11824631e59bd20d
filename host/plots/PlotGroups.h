#pragma once

#include "host/report/AnalysisData.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// Groups that forest plots show and that have plots of their own: nobody looks at more.
inline constexpr std::size_t MOST_SHOWN_GROUPS = 100;

/// A plot of all studies or of one group; the library has a row of coordinates for each.
struct PlotOfGroup
{
    std::size_t row;
    std::string group;  ///< empty for all studies
    double estimate;    ///< pooled
    std::size_t number; ///< of the group, from 1
};

/// Whether there is something to see: a single study has nothing to be compared with.
bool IsWorthAPicture(const AnalysisData& data, const PlotOfGroup& plot);

/// All studies, then each group of more than one, or the largest of very many; empty without coordinates.
std::vector<PlotOfGroup> AllAndGroups(const AnalysisData& data, std::size_t rowCount);
/// Each group, or the largest of very many, or all studies where there are no groups.
std::vector<PlotOfGroup> GroupsOrAll(const AnalysisData& data);

/// The positions of the plot's studies among all studies.
std::vector<std::size_t> StudiesOf(const AnalysisData& data, const PlotOfGroup& plot);

/// Which groups have no plots, because there are too many; empty for none.
std::string SentenceOfGroupsWithoutPlots(const AnalysisData& data);

/// The group with the name of its column: "country: Japan".
std::string GroupName(const AnalysisData& data, std::size_t group);

} // namespace host
