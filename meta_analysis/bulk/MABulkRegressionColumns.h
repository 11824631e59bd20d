#pragma once

#include "meta_analysis/bulk/MABulkRegression.h"
#include "meta_analysis/bulk/MASetRegression.h"

#include <cstddef>
#include <span>

namespace MA_NAMESPACE {

/// What the wanted columns take of a regression.
MAWantedRegression WantedBy(const MABulkRegressionResults& results);

/// Where the results of one set go.
struct MARegressionPlace
{
    const MABulkRegressionResults& results;
    std::size_t set;
    std::size_t setCount;
    std::span<const std::size_t> positions; ///< in the caller's design, of each column of the regression

    std::size_t CoefficientAt(std::size_t column) const
    {
        return results.isBySet ? set * positions.size() + column : column * setCount + set;
    }
    std::size_t CovarianceAt(std::size_t row, std::size_t column) const
    {
        const std::size_t p = positions.size();
        const std::size_t element = row * p + column;
        return results.isBySet ? set * p * p + element : element * setCount + set;
    }
};

/// Writes the row of a set without a model.
void PutMissing(const MARegressionPlace& place, int status);
void PutModel(const MARegressionPlace& place, const MASetRegression& regression,
              const MASetRegression::Model& model);
void PutCounts(const MARegressionPlace& place, std::size_t studies, std::size_t leftOut);

} // namespace MA_NAMESPACE
