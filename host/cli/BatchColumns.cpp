#include "host/cli/BatchColumns.h"

#include "host/text/Choice.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace host {

namespace {

/// The fewest characters to insert, remove or replace on the way from one text to the other (Levenshtein
/// 1966).
std::size_t EditDistance(std::string_view one, std::string_view other)
{
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

std::string_view NearestName(std::string_view name)
{
    return std::min_element(BATCH_COLUMNS.begin(), BATCH_COLUMNS.end(),
                            [&](const BatchColumn& one, const BatchColumn& other) {
                                return EditDistance(one.name, name) < EditDistance(other.name, name);
                            })
        ->name;
}

const BatchColumn& ColumnOf(std::string_view name)
{
    for (const BatchColumn& column : BATCH_COLUMNS)
        if (column.name == name)
            return column;
    throw UnusableInput(fmt::format("'{}' is no result; the nearest name is '{}'. The results are {}.", name,
                                    NearestName(name), NamesOf(BATCH_COLUMNS)));
}

} // namespace

std::vector<BatchColumn> ParseBatchColumns(std::string_view list)
{
    std::vector<BatchColumn> columns;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        const BatchColumn& column = ColumnOf(Trimmed(list.substr(start, end - start)));
        for (const BatchColumn& earlier : columns)
            if (earlier.name == column.name)
                throw UnusableInput(fmt::format("'{}' is given twice.", column.name));
        columns.push_back(column);
        start = end + 1;
    }
    return columns;
}

} // namespace host
