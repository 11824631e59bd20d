#pragma once

#include "meta_analysis/analysis/studies/MASelection.h"
#include "meta_analysis/platform/common/KXStatus.h"

namespace MA_NAMESPACE {

/// How the models of an analysis are built: by inverse variance from the effect sizes, or by a binary method
/// from the tables. Subgroup and cumulative analyses are written once in terms of it.
class MAModelBuilder
{
public:
    virtual ~MAModelBuilder() = default;

    /// A model of all studies; appends a row to every per-model list.
    virtual KXStatus BuildAll() = 0;

    /// A model of the selected studies; appends like `BuildAll`.
    virtual KXStatus Build(const MASelection& selection) = 0;

    /// A model of the first 1, 2, ... selected studies; appends a row for each.
    virtual KXStatus BuildPrefixes(const MASelection& selection) = 0;

    /// A model of the selected studies of which only the heterogeneity output is recorded.
    virtual KXStatus BuildTest(const MASelection& selection) = 0;
};

} // namespace MA_NAMESPACE
