#pragma once

#include "meta_analysis/analysis/steps/MASubgroups.h"

namespace MA_NAMESPACE {

/// The cumulative analysis of a group: a model after each further study.
struct MACumulativeGroup
{
    MASelection order;              ///< the group's studies in the order of the cumulative variable
    std::vector<double> values;     ///< of that variable, in that order
    std::vector<MAPooledRow> steps; ///< models of the first 1, 2, ... studies
    MAPooledStudies whole;          ///< the model of all of them, with its heterogeneity
};

/// The cumulative analysis of each group, and the model of all studies with two or more groups, or when a
/// study is in no group. After an
/// error, which is that of the first model that failed, the groups before it.
struct MACumulative
{
    KXStatus status;
    std::vector<MACumulativeGroup> groups;
    std::optional<MAPooledStudies> overall;
    std::vector<double> weights; ///< of the studies in the model of all, in study order
};
MACumulative AnalyseCumulatively(const MAStudies& studies, const std::vector<MASelection>& groups,
                                 MAConst::SORTYPE order, const MAModelChoice& choice);

} // namespace MA_NAMESPACE
