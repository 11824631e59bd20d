#pragma once

#include "meta_analysis/analysis/models/MAPool.h"
#include "meta_analysis/inference/MAPValue.h"

#include <optional>
#include <vector>

namespace MA_NAMESPACE {

/// Distinct values of the grouped studies' subgroup variable, ascending.
std::vector<double> GroupValuesOf(const MAStudies& studies);

/// The studies of each group value, in study order. A study whose value is none of them, or
/// that is not grouped, is in no group.
std::vector<MASelection> MembersByGroup(const MAStudies& studies, const std::vector<double>& groupValues);

/// Test of heterogeneity between groups.
struct MABetweenGroups
{
    double q = 0.0;
    int df = 0;
    MAPValue pValue = {0.0, KXMV::Missing()};
};

/// Adds a between-group Q to `before`: the weighted squares of the groups' means about the grand mean. The
/// weights are always inverse-variance weights, also where the groups were pooled by a binary method. Under
/// random effects each group has its own between-study variance, an entry of `tau2`; without one the test
/// stays as before. Borenstein et al. (2009), Introduction to Meta-Analysis, ch. 19.
MABetweenGroups TestBetweenGroups(const MAStudies& studies, const std::vector<MASelection>& groups,
                                  MAConst::MODELTYPE type, const std::vector<double>& tau2,
                                  const MABetweenGroups& before);

/// One model per group, with a between-study variance of its own or, by the choice, a common one, and one of
/// all studies. After an error, which is that of the first model that failed,
/// the models before it.
struct MASubgroups
{
    KXStatus status;
    std::vector<MAPooledStudies> groups;
    std::optional<MAPooledStudies> overall;
};
MASubgroups AnalyseSubgroups(const MAStudies& studies, const std::vector<MASelection>& groups,
                             const MAModelChoice& choice);

} // namespace MA_NAMESPACE
