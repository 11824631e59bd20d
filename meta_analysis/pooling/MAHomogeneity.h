#pragma once

#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/pooling/MAPooledModel.h"

namespace MA_NAMESPACE {

/// Cochran's test of the statistic Q of k studies, with k - 1 degrees of freedom.
inline MAHomogeneityTest TestHomogeneity(double q, std::size_t studyCount, bool wantsPValue = true)
{
    const int df = static_cast<int>(studyCount) - 1;
    return {q, df, wantsPValue ? HomogeneityPValue(q, df) : MAPValue()};
}

} // namespace MA_NAMESPACE
