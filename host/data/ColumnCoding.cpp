#include "host/data/ColumnCoding.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <map>
#include <string_view>

namespace host {

namespace {

/// Codes by the values `valueOf(row)`, which distinguish and order the records.
template <class Value, class ValueOf>
ColumnCoding CodeBy(const DataTable& table, std::size_t column, const ValueOf& valueOf)
{
    struct Level
    {
        std::string_view text;
        double code;
    };
    std::map<Value, Level> levels;
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        if (!table.IsMissing(row, column))
            levels.try_emplace(valueOf(row), Level{table.TrimmedText(row, column), 0});

    ColumnCoding coding;
    for (auto& [value, level] : levels) {
        level.code = static_cast<double>(coding.levels.size());
        coding.levels.emplace_back(level.text);
    }
    coding.codes.reserve(table.RowCount());
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        coding.codes.push_back(table.IsMissing(row, column) ? KXMV::Missing()
                                                            : levels.find(valueOf(row))->second.code);
    return coding;
}

} // namespace

ColumnCoding CodeColumn(const DataTable& table, std::size_t column)
{
    if (table.HoldsNumbers(column))
        return CodeBy<double>(table, column, [&](std::size_t row) { return table.Number(row, column); });
    return CodeBy<std::string_view>(table, column,
                                    [&](std::size_t row) { return table.TrimmedText(row, column); });
}

} // namespace host
