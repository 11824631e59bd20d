#include "host/data/DataTable.h"

#include "host/text/NearestName.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace host {

namespace {

bool IsNumber(std::string_view text)
{
    try {
        ParseNumber(text);
        return true;
    } catch (const UnusableInput&) {
        return false;
    }
}

std::string FileContent(const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!file)
        throw UnusableInput(fmt::format("'{}' cannot be opened: {}.", path, std::strerror(errno)));
    std::string content;
    char block[1 << 16];
    while (const std::size_t size = std::fread(block, 1, sizeof block, file.get()))
        content.append(block, size);
    if (std::ferror(file.get()) != 0)
        throw UnusableInput(fmt::format("'{}' cannot be read: {}.", path, std::strerror(errno)));
    return content;
}

} // namespace

DataTable::DataTable(CsvContent content, std::string name)
    : content_(std::move(content)), name_(std::move(name))
{
    if (content_.rowLines.empty())
        throw UnusableInput(
            fmt::format("{} is empty: a header line and a row for each study are needed.", name_));
    if (RowCount() == 0)
        throw UnusableInput(fmt::format("{} has a header line and no data rows.", name_));
}

DataTable DataTable::Read(const std::string& path)
{
    return Parse(FileContent(path), path);
}

DataTable DataTable::Parse(std::string_view text, const std::string& name)
{
    return {ReadCsv(text, name), name};
}

std::size_t DataTable::PositionOf(std::string_view column) const
{
    std::size_t position = content_.columnCount;
    for (std::size_t i = 0; i < content_.columnCount; ++i) {
        if (NameOf(i) != column)
            continue;
        if (position != content_.columnCount)
            throw UnusableInput(fmt::format("{}, line {}: column {} and column {} are both named '{}'.",
                                            name_, content_.LineOf(0, i), position + 1, i + 1, column));
        position = i;
    }
    if (position == content_.columnCount)
        throw UnusableInput(fmt::format("{} has no column '{}'.{} Its columns are: {}.", name_, column,
                                        DidYouMean(column, ColumnNames()), fmt::join(ColumnNames(), ", ")));
    return position;
}

std::string_view DataTable::TrimmedText(std::size_t row, std::size_t column) const
{
    return Trimmed(Text(row, column));
}

bool DataTable::IsMissing(std::size_t row, std::size_t column) const
{
    const std::string_view text = TrimmedText(row, column);
    return text.empty() || text == "NA" || text == ".";
}

double DataTable::Number(std::size_t row, std::size_t column) const
{
    if (IsMissing(row, column))
        return KXMV::Missing();
    try {
        return ParseNumber(TrimmedText(row, column));
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("{}, line {}, column '{}': {}", name_,
                                        content_.LineOf(row + 1, column), NameOf(column), problem.what()));
    }
}

bool DataTable::HoldsNumbers(std::size_t column) const
{
    for (std::size_t row = 0; row < RowCount(); ++row)
        if (!IsMissing(row, column) && !IsNumber(TrimmedText(row, column)))
            return false;
    return true;
}

std::vector<std::string> DataTable::ColumnNames() const
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < content_.columnCount; ++i)
        names.emplace_back(NameOf(i));
    return names;
}

} // namespace host
