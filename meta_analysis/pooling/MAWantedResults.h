#pragma once

namespace MA_NAMESPACE {

/// Which parts of a pooled model are wanted. What is not stays missing, unless a wanted part takes it; the
/// estimate with its standard error and statistic, and tau², are always there.
struct MAWantedResults
{
    bool pValue = true;
    bool interval = true;
    bool prediction = true;
    bool homogeneity = true; ///< Q
    bool homogeneityPValue = true;
    bool heterogeneity = true; ///< H² and I²
    bool heterogeneityBounds = true;
    bool tau2Interval = true;
    bool likelihood = true;
};

} // namespace MA_NAMESPACE
