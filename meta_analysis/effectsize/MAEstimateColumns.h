#pragma once

#include "meta_analysis/inference/MAEstimate.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Effect sizes with their tests and intervals, one entry per study in each column.
struct MAEstimateColumns
{
    std::vector<double> value;
    std::vector<double> variance;
    std::vector<double> stdError;
    std::vector<double> ciLower;
    std::vector<double> ciUpper;
    std::vector<double> zValue;
    std::vector<double> significance;

    /// Makes room for `count` estimates, which replace the former ones; tests are appended to the former.
    void Restart(std::size_t count)
    {
        for (std::vector<double>* column : {&value, &variance, &stdError, &ciLower, &ciUpper}) {
            column->clear();
            column->reserve(count);
        }
        for (std::vector<double>* column : {&zValue, &significance})
            column->reserve(column->size() + count);
    }

    void Append(const MAEstimate& estimate)
    {
        value.push_back(estimate.estimate);
        variance.push_back(estimate.variance);
        stdError.push_back(estimate.stdError);
        ciLower.push_back(estimate.ciLower);
        ciUpper.push_back(estimate.ciUpper);
        zValue.push_back(estimate.statistic);
        significance.push_back(estimate.pValue.value);
    }
};

} // namespace MA_NAMESPACE
