#include "host/data/DataTable.h"

#include "host/data/ByteSource.h"
#include "host/data/ColumnName.h"
#include "host/data/FieldValue.h"
#include "host/data/FileKinds.h"
#include "host/data/Separator.h"
#include "host/data/TextEncoding.h"
#include "host/data/UnknownColumn.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace host {

namespace {

std::string BytesOf(const std::string& path)
{
    ByteSource source(path);
    std::string bytes;
    constexpr std::size_t BLOCK = std::size_t{1} << 16;
    bytes.reserve(source.SizeHint() + BLOCK); // the last block is read behind the end
    std::size_t size = 0;
    do {
        size = bytes.size();
        bytes.resize(size + BLOCK);
        bytes.resize(size + source.Read(bytes.data() + size, BLOCK));
    } while (bytes.size() > size);
    return bytes;
}

std::string NoteOfEmptyRows(std::size_t count)
{
    return count == 1
               ? "A row without any value at the end of the data file is left out."
               : fmt::format("{} rows without any value at the end of the data file are left out.", count);
}

} // namespace

std::string DataName(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

DataTable::DataTable(std::string bytes, std::string name, const FileFormat& format)
    : name_(std::move(name)), format_(format), missing_(format.missing)
{
    RefuseOtherKinds(bytes, name_);
    DecodedText decoded = DecodeText(std::move(bytes), name_);
    if (!decoded.note.empty())
        notes_.push_back(std::move(decoded.note));
    const char separator = FindSeparator(decoded.text);
    content_ = ReadCsv(std::move(decoded.text), name_, separator);
    RequireRows();
    if (content_.EmptyRows() > 0)
        notes_.push_back(NoteOfEmptyRows(content_.EmptyRows()));
    if (format_.decimalMark)
        decimalMark_ = *format_.decimalMark;
    else if (separator != ',')
        FindDecimalMark();
}

char DataTable::FindSeparator(std::string_view text)
{
    if (format_.separator) {
        RequireSeparator(text, *format_.separator, name_);
        return *format_.separator;
    }
    const FoundSeparator found = SeparatorOf(text);
    if (found.isGuess)
        notes_.push_back(NoteOfGuess(found.character));
    return found.character;
}

void DataTable::RequireRows() const
{
    if (content_.RowCount() == 0)
        throw UnusableInput(
            fmt::format("{} is empty: a header line and a row for each study are needed.", name_));
    if (RowCount() == 0)
        throw UnusableInput(fmt::format("{} has a header line and no data rows.", name_));
}

DataTable DataTable::Read(const std::string& path, const FileFormat& format)
{
    return {BytesOf(path), path == "-" ? DataName(path) : fmt::format("'{}'", path), format};
}

DataTable DataTable::Parse(std::string_view bytes, const std::string& name, const FileFormat& format)
{
    return {std::string(bytes), name, format};
}

/// Of each column whether the format names it; all where it names none.
std::vector<bool> DataTable::AreRead() const
{
    const std::vector<std::string>& names = format_.numberColumns;
    std::vector<bool> areRead;
    for (std::size_t column = 0; column < content_.ColumnCount(); ++column)
        areRead.push_back(names.empty() ||
                          std::any_of(names.begin(), names.end(), [&](const std::string& name) {
                              return IsSameName(name, NameOf(column));
                          }));
    return areRead;
}

void DataTable::FindDecimalMark()
{
    DecimalCensus census(AreRead());
    for (std::size_t row = 1; row < content_.RowCount() && census.Needs(row); ++row)
        for (std::size_t column = 0; column < content_.ColumnCount(); ++column)
            if (const std::string_view field = WithoutBlanks(content_.Field(row, column));
                !missing_.Have(field))
                census.Note(field, row, column);
    const DecimalCensus::Mark mark = census.Found();
    decimalMark_ = mark.character;
    if (mark.doubt)
        notes_.push_back(
            NoteOfDoubt(mark, PlaceOf(*mark.doubt), mark.reason ? PlaceOf(*mark.reason) : std::string()));
}

std::string DataTable::PlaceOf(const DecimalCensus::Place& place) const
{
    return fmt::format("'{}' (line {} of the data file, column '{}')",
                       content_.Field(place.row, place.column), content_.LineOf(place.row, place.column),
                       NameOf(place.column));
}

std::string_view DataTable::NameOf(std::size_t column) const
{
    return WithoutBlanks(content_.Field(0, column));
}

std::size_t DataTable::PositionOf(std::string_view column) const
{
    const std::size_t none = content_.ColumnCount();
    std::size_t position = none;
    for (std::size_t i = 0; i < none; ++i) {
        if (!IsSameName(NameOf(i), column))
            continue;
        if (position != none)
            throw UnusableInput(fmt::format("{}, line {}: column {} and column {} are both named '{}'.",
                                            name_, content_.LineOf(0, i), position + 1, i + 1, column));
        position = i;
    }
    if (position == none)
        FailForUnknownColumn(name_, column, ColumnNames());
    return position;
}

std::string_view DataTable::TrimmedText(std::size_t row, std::size_t column) const
{
    return WithoutBlanks(Text(row, column));
}

bool DataTable::IsMissing(std::size_t row, std::size_t column) const
{
    const std::string_view text = TrimmedText(row, column);
    if (missing_.Have(text))
        return true;
    if (!missing_.HaveNumbers())
        return false;
    const FieldNumber number = ReadFieldNumber(text, decimalMark_);
    return number.kind == NumberKind::NUMBER && missing_.HaveNumber(number.value);
}

double DataTable::Number(std::size_t row, std::size_t column) const
{
    const std::string_view text = Text(row, column);
    double number = 0;
    if (decimalMark_ == '.' && ParsePlainNumber(text, number))
        return missing_.HaveNumber(number) ? KXMV::Missing() : number;
    if (missing_.Have(WithoutBlanks(text)))
        return KXMV::Missing();
    try {
        number = ParseFieldNumber(text, decimalMark_);
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("{}, line {}, column '{}': {}", name_,
                                        content_.LineOf(row + 1, column), NameOf(column), problem.what()));
    }
    return missing_.HaveNumber(number) ? KXMV::Missing() : number;
}

int DataTable::Decimals(std::size_t row, std::size_t column) const
{
    std::string text(TrimmedText(row, column));
    std::replace(text.begin(), text.end(), decimalMark_, '.');
    return DecimalsIn(text);
}

bool DataTable::HoldsNumbers(std::size_t column) const
{
    try {
        for (std::size_t row = 0; row < RowCount(); ++row)
            Number(row, column);
        return true;
    } catch (const UnusableInput&) {
        return false;
    }
}

std::vector<std::string> DataTable::ColumnNames() const
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < content_.ColumnCount(); ++i)
        if (!NameOf(i).empty())
            names.emplace_back(NameOf(i));
    return names;
}

} // namespace host
