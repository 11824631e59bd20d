#pragma once

#include "host/report/Report.h"

#include <string>
#include <vector>

namespace host {

/// The columns as a table with a caption, which scrolls on its own where it is wider than the screen; then a
/// sentence about rows that it does not show. A first column of texts holds the row headers.
std::string HtmlTable(const std::string& caption, const std::vector<ReportColumn>& table);

} // namespace host
