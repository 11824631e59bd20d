#pragma once

#include "host/report/Report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// The rows of a table that a page has. Browsers take seconds to lay out more, and nobody reads them there.
inline constexpr std::size_t MOST_ROWS_OF_PAGE = 10000;

inline std::size_t ShownRowsOf(const std::vector<ReportColumn>& table)
{
    return std::min(table.front().cells.size(), MOST_ROWS_OF_PAGE);
}

/// What the page leaves out of the table; empty for nothing.
inline std::string SentenceOfRowsNotShown(const std::vector<ReportColumn>& table)
{
    const std::size_t all = table.front().cells.size();
    return all <= MOST_ROWS_OF_PAGE
               ? ""
               : fmt::format("The page has the first {} of {} rows; the text report and the JSON have all.",
                             MOST_ROWS_OF_PAGE, all);
}

} // namespace host
