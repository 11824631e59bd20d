#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <cstddef>
#include <limits>

namespace MA_NAMESPACE {

/// What a column of the caller has for a result.
inline double OrNaN(double value)
{
    return KXMV::IsMissing(value) ? std::numeric_limits<double>::quiet_NaN() : value;
}

/// Stores a number in a column of the caller, unless it is not wanted.
template <class Number>
void Put(Number* column, std::size_t position, Number value)
{
    if (column != nullptr)
        column[position] = value;
}

/// Stores -log10 of a p-value; neither 0 nor NaN has a sign.
inline void PutLog10(double* column, std::size_t position, const MAPValue& pValue)
{
    if (column != nullptr)
        column[position] = 0.0 - OrNaN(pValue.Log10());
}

} // namespace MA_NAMESPACE
