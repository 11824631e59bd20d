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
    for (const std::string_view name : PartsOfList(list)) {
        const BatchColumn& column = ColumnOf(name);
        for (const BatchColumn& earlier : columns)
            if (earlier.name == column.name)
                throw UnusableInput(fmt::format("'{}' is given twice.", column.name));
        columns.push_back(column);
    }
    return columns;
}

} // namespace host
