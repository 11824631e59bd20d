#pragma once

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// The counts of 2x2 tables as a host holds them: one vector for each cell, null while it is not given.
struct MACountColumns
{
    std::vector<double>* treatmentSuccesses = nullptr;
    std::vector<double>* treatmentFailures = nullptr;
    std::vector<double>* controlSuccesses = nullptr;
    std::vector<double>* controlFailures = nullptr;

    bool HaveLength(std::size_t count) const noexcept
    {
        return MA_NAMESPACE::HaveLength(count, treatmentSuccesses, treatmentFailures, controlSuccesses,
                                        controlFailures);
    }

    /// Takes four vectors of one length.
    std::vector<MATable> Tables() const
    {
        std::vector<MATable> tables;
        tables.reserve(treatmentSuccesses->size());
        for (std::size_t i = 0; i < treatmentSuccesses->size(); ++i)
            tables.push_back({(*treatmentSuccesses)[i], (*treatmentFailures)[i], (*controlSuccesses)[i],
                              (*controlFailures)[i]});
        return tables;
    }

    /// Replaces the counts by those of the tables with their correction, which is resolved.
    void StoreCorrected(const std::vector<MATable>& tables, const MAZeroCorrection& correction) const
    {
        for (std::size_t i = 0; i < tables.size(); ++i) {
            const MATable corrected = correction.Corrected(tables[i]);
            (*treatmentSuccesses)[i] = corrected.a;
            (*treatmentFailures)[i] = corrected.b;
            (*controlSuccesses)[i] = corrected.c;
            (*controlFailures)[i] = corrected.d;
        }
    }
};

} // namespace MA_NAMESPACE
