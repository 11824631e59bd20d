#include "host/text/TableKind.h"

#include "host/text/AsciiCase.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

namespace host {

namespace {

struct TableEnding
{
    std::string_view ending;
    TableKind kind;
};

constexpr std::array TABLE_ENDINGS{TableEnding{".csv", TableKind::CSV},
                                   TableEnding{".md", TableKind::MARKDOWN},
                                   TableEnding{".tex", TableKind::LATEX}};

bool EndsWith(std::string_view path, std::string_view ending)
{
    return path.size() > ending.size() && EqualInAnyCase(path.substr(path.size() - ending.size()), ending);
}

} // namespace

TableKind TableKindOf(std::string_view path)
{
    if (path == "-")
        return TableKind::CSV;
    for (const TableEnding& one : TABLE_ENDINGS)
        if (EndsWith(path, one.ending))
            return one.kind;
    throw UnusableInput(fmt::format(
        "--table: '{}' ends with none of .csv, .md and .tex, which say how it is written.", path));
}

} // namespace host
