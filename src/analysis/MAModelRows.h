#pragma once

#include "meta_analysis/analysis/MAModelResults.h"

namespace MA_NAMESPACE {

/// Heterogeneity output of either fixed-effect model; these have no prediction interval.
template <class FixedModel>
MAHeterogeneityRow HeterogeneityRowOf(const FixedModel& model)
{
    MAHeterogeneityRow row;
    row.q = model.GetHomogeneityTestQ();
    row.df = model.GetHomogeneityTestDf();
    row.significance = model.GetHomogeneityTestPVal();
    row.h2 = model.GetHeterogeneityTestH2();
    row.h2Lower = model.GetHeterogeneityTestH2CILower();
    row.h2Upper = model.GetHeterogeneityTestH2CIUpper();
    row.i2 = model.GetHeterogeneityTestI2();
    row.i2Lower = model.GetHeterogeneityTestI2CILower();
    row.i2Upper = model.GetHeterogeneityTestI2CIUpper();
    return row;
}

} // namespace MA_NAMESPACE
