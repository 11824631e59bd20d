#include "host/data/DataTable.h"

#include "host/data/ByteSource.h"
#include "host/data/FieldValue.h"
#include "host/data/FileKinds.h"
#include "host/data/Separator.h"
#include "host/data/TextEncoding.h"
#include "host/text/AsciiCase.h"
#include "host/text/NearestName.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
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

/// The fields that are the first to say something about the decimal mark, by what they say.
class FirstFields
{
public:
    struct Place
    {
        std::size_t row = 0; ///< with the header; 0 for none
        std::size_t column = 0;
    };

    void Note(DecimalEvidence evidence, std::size_t row, std::size_t column)
    {
        Place& place = places_[static_cast<std::size_t>(evidence)];
        if (place.row == 0)
            place = {row, column};
    }
    const Place& Of(DecimalEvidence evidence) const { return places_[static_cast<std::size_t>(evidence)]; }
    bool Have(DecimalEvidence evidence) const { return Of(evidence).row > 0; }

private:
    std::array<Place, 5> places_;
};

/// Ends at a field that decides. Points alone need no second look when a number has had one.
FirstFields FirstFieldsOf(const CsvContent& content)
{
    FirstFields first;
    for (std::size_t row = 1; row < content.RowCount(); ++row) {
        for (std::size_t column = 0; column < content.ColumnCount(); ++column) {
            const std::string_view field = content.Field(row, column);
            if (first.Have(DecimalEvidence::POINT) && field.find(',') == std::string_view::npos)
                continue;
            first.Note(EvidenceOf(field), row, column);
            if (first.Have(DecimalEvidence::COMMA))
                return first;
        }
    }
    return first;
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
    : name_(std::move(name)), format_(format)
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
    for (const std::string& text : format_.missing)
        if (double number = 0; ParsePlainNumber(text, number))
            missingNumbers_.push_back(number);
}

char DataTable::FindSeparator(std::string_view text)
{
    if (format_.separator)
        return *format_.separator;
    const FoundSeparator found = SeparatorOf(text);
    if (found.isGuess)
        notes_.push_back(
            fmt::format("The header line of the data file has several separators; the file is read "
                        "as separated by {}. --separator sets another.",
                        PluralOf(found.character)));
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

/// A number that has a decimal comma decides, because a point may separate thousands where commas are
/// decimal, but hardly a comma in a file with decimal points that is separated by something else. Where
/// nothing else decides, a point that may separate thousands is taken for the decimal mark, with a note.
void DataTable::FindDecimalMark()
{
    const FirstFields first = FirstFieldsOf(content_);
    if (first.Have(DecimalEvidence::COMMA))
        decimalMark_ = ',';
    const FirstFields::Place& doubtful = first.Of(DecimalEvidence::POINT_OR_THOUSANDS);
    if (doubtful.row == 0 || first.Have(DecimalEvidence::COMMA) || first.Have(DecimalEvidence::POINT))
        return;
    notes_.push_back(fmt::format("The point of '{}' (line {} of the data file, column '{}') is taken for the "
                                 "decimal mark, and nothing in "
                                 "the file says whether it separates thousands. --decimal point confirms it; "
                                 "--decimal comma refuses it.",
                                 content_.Field(doubtful.row, doubtful.column),
                                 content_.LineOf(doubtful.row, doubtful.column), NameOf(doubtful.column)));
}

std::string_view DataTable::NameOf(std::size_t column) const
{
    return WithoutBlanks(content_.Field(0, column));
}

std::size_t DataTable::PositionOf(std::string_view column) const
{
    const std::size_t none = content_.ColumnCount();
    const std::string_view wanted = WithoutBlanks(column);
    std::size_t position = none;
    for (std::size_t i = 0; i < none; ++i) {
        if (NameOf(i) != wanted)
            continue;
        if (position != none)
            throw UnusableInput(fmt::format("{}, line {}: column {} and column {} are both named '{}'.",
                                            name_, content_.LineOf(0, i), position + 1, i + 1, column));
        position = i;
    }
    if (position == none)
        throw UnusableInput(fmt::format("{} has no column '{}'.{} Its columns are: {}.", name_, column,
                                        DidYouMean(column, ColumnNames()), fmt::join(ColumnNames(), ", ")));
    return position;
}

std::string_view DataTable::TrimmedText(std::size_t row, std::size_t column) const
{
    return WithoutBlanks(Text(row, column));
}

bool DataTable::IsMissingText(std::string_view text) const
{
    return text.empty() ||
           std::any_of(format_.missing.begin(), format_.missing.end(),
                       [text](const std::string& missing) { return EqualInAnyCase(text, missing); });
}

bool DataTable::IsMissingNumber(double number) const
{
    return std::find(missingNumbers_.begin(), missingNumbers_.end(), number) != missingNumbers_.end();
}

bool DataTable::IsMissing(std::size_t row, std::size_t column) const
{
    const std::string_view text = TrimmedText(row, column);
    if (IsMissingText(text))
        return true;
    if (missingNumbers_.empty())
        return false;
    try {
        return IsMissingNumber(ParseFieldNumber(text, decimalMark_));
    } catch (const UnusableInput&) {
        return false;
    }
}

double DataTable::Number(std::size_t row, std::size_t column) const
{
    const std::string_view text = Text(row, column);
    double number = 0;
    if (decimalMark_ == '.' && ParsePlainNumber(text, number))
        return IsMissingNumber(number) ? KXMV::Missing() : number;
    if (IsMissingText(WithoutBlanks(text)))
        return KXMV::Missing();
    try {
        number = ParseFieldNumber(text, decimalMark_);
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("{}, line {}, column '{}': {}", name_,
                                        content_.LineOf(row + 1, column), NameOf(column), problem.what()));
    }
    return IsMissingNumber(number) ? KXMV::Missing() : number;
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
