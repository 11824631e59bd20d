#pragma once

#include <string_view>

namespace host {

/// How a table of studies is written.
enum class TableKind
{
    CSV,
    MARKDOWN,
    LATEX
};

/// The kind by the ending of the path, in any case; CSV for "-". Throws UnusableInput for another ending.
TableKind TableKindOf(std::string_view path);

} // namespace host
