#pragma once

#include <functional>
#include <type_traits>
#include <vector>

/// The copy that a getter returns. A getter has no status to report a failure with and must not throw:
/// when memory runs out it returns an empty vector.
template <class T>
std::vector<T> CopyOf(const std::vector<T>& values) noexcept
{
    try {
        return values;
    } catch (...) {
        return {};
    }
}

/// One field of every row, as a getter returns it: empty when memory runs out, like `CopyOf`. The field is a
/// member, or a function of the row.
template <class Row, class Field>
auto FieldOf(const std::vector<Row>& rows, Field field) noexcept
{
    std::vector<std::decay_t<std::invoke_result_t<Field, const Row&>>> fields;
    try {
        fields.reserve(rows.size());
        for (const Row& row : rows)
            fields.push_back(std::invoke(field, row));
    } catch (...) {
        fields.clear();
    }
    return fields;
}
