#pragma once

#include "meta_analysis/bulk/MABulkResults.h"

#include <array>
#include <cstddef>
#include <vector>

/// All columns of results of many sets, or those whose bits are set in `wanted`; -7 where nothing was
/// written.
struct BulkColumns
{
    static constexpr double* MA_NAMESPACE::MABulkResults::*numbers[] = {
        &MA_NAMESPACE::MABulkResults::estimate,
        &MA_NAMESPACE::MABulkResults::stdError,
        &MA_NAMESPACE::MABulkResults::statistic,
        &MA_NAMESPACE::MABulkResults::pValue,
        &MA_NAMESPACE::MABulkResults::minusLog10P,
        &MA_NAMESPACE::MABulkResults::ciLower,
        &MA_NAMESPACE::MABulkResults::ciUpper,
        &MA_NAMESPACE::MABulkResults::tau2,
        &MA_NAMESPACE::MABulkResults::tau2Lower,
        &MA_NAMESPACE::MABulkResults::tau2Upper,
        &MA_NAMESPACE::MABulkResults::q,
        &MA_NAMESPACE::MABulkResults::qPValue,
        &MA_NAMESPACE::MABulkResults::i2,
        &MA_NAMESPACE::MABulkResults::predictionLower,
        &MA_NAMESPACE::MABulkResults::predictionUpper};
    static constexpr int* MA_NAMESPACE::MABulkResults::*counts[] = {
        &MA_NAMESPACE::MABulkResults::studyCount, &MA_NAMESPACE::MABulkResults::leftOut,
        &MA_NAMESPACE::MABulkResults::qDf, &MA_NAMESPACE::MABulkResults::status};
    static constexpr std::size_t numberCount = std::size(numbers);
    static constexpr std::size_t all = ~std::size_t{0};

    explicit BulkColumns(std::size_t setCount, std::size_t wanted = all)
    {
        for (std::size_t i = 0; i < numberCount; ++i) {
            values[i].assign(setCount, -7.0);
            results.*numbers[i] = wanted >> i & 1 ? values[i].data() : nullptr;
        }
        for (std::size_t i = 0; i < std::size(counts); ++i) {
            integers[i].assign(setCount, -7);
            results.*counts[i] = wanted >> (numberCount + i) & 1 ? integers[i].data() : nullptr;
        }
    }
    BulkColumns(const BulkColumns&) = delete;

    MA_NAMESPACE::MABulkResults results;
    std::array<std::vector<double>, numberCount> values;
    std::array<std::vector<int>, std::size(counts)> integers;
};
