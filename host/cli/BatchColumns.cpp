#include "host/cli/BatchColumns.h"

#include "host/text/Choice.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

namespace host {

namespace {

const BatchColumn& ColumnOf(std::string_view name)
{
    for (const BatchColumn& column : BATCH_COLUMNS)
        if (EqualInAnyCase(column.name, name))
            return column;
    throw UnusableInput(fmt::format("'{}' is no result.{} The results are {}.", name,
                                    DidYouMean(name, ListOfNames(BATCH_COLUMNS)), NamesOf(BATCH_COLUMNS)));
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
