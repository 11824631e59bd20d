#pragma once

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/settings/Memory.h"

#include <functional>
#include <vector>

namespace MA_NAMESPACE {

// The columns of result lists that getters return.

/// A member of a member of a row.
template <class Row, class Part, class Field>
auto Nested(Part Row::*part, Field field)
{
    return [=](const Row& row) { return std::invoke(field, row.*part); };
}

/// The p-value in a part of a row (`form` is `&MAPValue::value`), or its decimal logarithm
/// (`&MAPValue::Log10`).
template <class Row, class Part, class Form>
auto PValueForm(Part Row::*part, Form form)
{
    return [=](const Row& row) { return std::invoke(form, (row.*part).pValue); };
}

template <class Row, class Part, class Form>
std::vector<double> PValuesOf(const std::vector<Row>& rows, Part Row::*part, Form form) noexcept
{
    return FieldOf(rows, PValueForm(part, form));
}

/// A field of every step of every cumulative analysis.
template <class Field>
auto CumulativeColumn(const MACumulativeLists& cumulative, Field field) noexcept
{
    return FieldOf(cumulative.steps,
                   [=](const std::vector<MAPooledRow>& steps) { return FieldOf(steps, field); });
}

} // namespace MA_NAMESPACE
