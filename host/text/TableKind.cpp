#include "host/text/TableKind.h"

#include "host/text/Choice.h"

#include <fmt/format.h>

#include <array>
#include <cctype>
#include <string>

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

std::string InLowerCase(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

} // namespace

TableKind TableKindOf(std::string_view path)
{
    if (path == "-")
        return TableKind::CSV;
    const std::string lower = InLowerCase(path);
    for (const TableEnding& one : TABLE_ENDINGS)
        if (lower.size() > one.ending.size() && lower.ends_with(one.ending))
            return one.kind;
    throw UnusableInput(fmt::format(
        "--table: '{}' ends with none of .csv, .md and .tex, which say how it is written.", path));
}

} // namespace host
