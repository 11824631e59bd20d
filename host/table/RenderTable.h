#pragma once

#include "host/table/StudyTable.h"
#include "host/text/TableKind.h"

#include <string>

namespace host {

/// The table as CSV after RFC 4180, in UTF-8; as a Markdown table; or as a `tabular` of LaTeX with the rules
/// of booktabs. What a text of the data could be to a reader of the file, such as a formula of a spreadsheet
/// or a command of LaTeX, it is not.
std::string RenderTable(const StudyTable& table, TableKind kind);

} // namespace host
