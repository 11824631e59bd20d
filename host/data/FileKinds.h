#pragma once

#include <string>
#include <string_view>

namespace host {

/// Throws UnusableInput for the first bytes of a file that is no text table: a workbook, the file of a
/// statistics program, a document, a web page, or one that another program than gzip has compressed. The
/// sentence says what the file is, and how to get a CSV file from it. Workbooks in a ZIP archive tell their
/// kind within some kilobytes; `start` may be longer.
void RefuseOtherKinds(std::string_view start, const std::string& name);

} // namespace host
