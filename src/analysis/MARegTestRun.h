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
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    std::vector<KXRegrParameter> parameters;
    KXBitSet nonRedundant;
};

/// One field of every test, as a getter returns it: empty when memory runs out.
template <class Field>
std::vector<Field> FieldOf(const std::vector<MARegTestRun>& tests, Field MARegTestRun::*field) noexcept
{
    try {
        std::vector<Field> fields;
        fields.reserve(tests.size());
        for (const MARegTestRun& test : tests)
            fields.push_back(test.*field);
        return fields;
    } catch (...) {
        return {};
    }
}

} // namespace MA_NAMESPACE
