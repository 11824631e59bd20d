#pragma once

#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"

#include <vector>

namespace MA_NAMESPACE {

/// One regression-based small-study test, with an entry per parameter; empty when it failed.
struct MARegTestRun
{
    int passed = 0;
    std::vector<double> coefficients;
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<double> significances;
    std::vector<double> log10Significances;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    std::vector<KXRegrParameter> parameters;
    KXBitSet nonRedundant;
};

} // namespace MA_NAMESPACE
