#include "host/batch/RowParser.h"

#include "host/batch/RowNumber.h"
#include "host/data/Encodings.h"
#include "host/text/AsciiCase.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace host {

namespace {

using Kind = RowNumber::Kind;

/// Sizes of keys and alleles are kept in two bytes.
constexpr std::size_t LONGEST_TEXT = std::numeric_limits<std::uint16_t>::max();

bool IsBlankLine(std::string_view line)
{
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

std::optional<std::size_t> LineOfZero(const TextBlock& text)
{
    const void* const zero = std::memchr(text.begin, '\0', static_cast<std::size_t>(text.end - text.begin));
    if (zero == nullptr)
        return {};
    return static_cast<std::size_t>(
        std::count(static_cast<const char*>(text.begin), static_cast<const char*>(zero), '\n'));
}

/// The first line with bytes that are no UTF-8.
std::optional<std::size_t> LineOfStrange(std::string_view text)
{
    if (IsAscii(text))
        return {};
    const Utf8Census census = CensusOf(text);
    if (census.strangeBytes == 0)
        return {};
    return static_cast<std::size_t>(std::count(text.data(), text.data() + census.firstStrange, '\n'));
}

RowProblem AlleleProblem(const Alleles& alleles, const MissingTexts& missing)
{
    for (const std::string_view allele : {alleles.effect, alleles.other})
        if (missing.Have(allele) || allele.size() > LONGEST_TEXT)
            return RowProblem::NO_ALLELE;
    return EqualInAnyCase(alleles.effect, alleles.other) ? RowProblem::SAME_ALLELES : RowProblem::NONE;
}

RowProblem ProblemOf(Kind kind, RowProblem ifMissing, RowProblem ifNoNumber, RowProblem ifOutside)
{
    switch (kind) {
    case Kind::NUMBER:
        return RowProblem::NONE;
    case Kind::MISSING:
        return ifMissing;
    case Kind::NO_NUMBER:
        return ifNoNumber;
    case Kind::OTHER_MARK:
        return RowProblem::OTHER_MARK;
    case Kind::OUTSIDE:
        return ifOutside;
    }
    return RowProblem::NONE;
}

} // namespace

RowProblem RowParser::ReadKey(std::string_view key, Row& row) const
{
    if (layout_.form.missing.Have(key))
        return RowProblem::NO_KEY;
    if (key.size() > LONGEST_TEXT || key.find('\t') != std::string_view::npos)
        return RowProblem::KEY_UNUSABLE;
    row.keyStart = key.data();
    row.keySize = static_cast<std::uint16_t>(key.size());
    return RowProblem::NONE;
}

RowProblem RowParser::ReadNumbers(std::string_view effectSize, std::string_view spread, Row& row) const
{
    const RowNumber effect = NumberOf(effectSize, layout_.form);
    if (effect.kind != Kind::NUMBER)
        return ProblemOf(effect.kind, RowProblem::NO_EFFECT_SIZE, RowProblem::EFFECT_SIZE_NO_NUMBER,
                         RowProblem::EFFECT_SIZE_OUTSIDE);
    const RowNumber number = NumberOf(spread, layout_.form);
    if (number.kind != Kind::NUMBER)
        return ProblemOf(number.kind, RowProblem::NO_SPREAD, RowProblem::SPREAD_NO_NUMBER,
                         RowProblem::SPREAD_OUTSIDE);
    if (!(number.value > 0.0))
        return RowProblem::SPREAD_NOT_POSITIVE;
    row.effectSize = effect.value;
    row.variance = layout_.hasStdError ? number.value * number.value : number.value;
    const bool hasWeight =
        row.variance > 0.0 && std::isfinite(row.variance) && std::isfinite(1.0 / row.variance);
    return hasWeight ? RowProblem::NONE : RowProblem::VARIANCE_EXTREME;
}

/// Whether the fields are those of the header. A spreadsheet writes separators as far as its widest row has
/// cells: empty fields behind them are none.
bool RowParser::HasFields(const FieldCutter& cutter, std::size_t count, std::string_view line) const
{
    if (count <= layout_.fieldCount)
        return count == layout_.fieldCount;
    const char blanks[] = {' ', '\t', layout_.separator};
    const std::string_view last = cutter.Field(line.data(), layout_.fieldCount - 1);
    const auto end = static_cast<std::size_t>(last.data() - line.data()) + last.size();
    return line.find_first_not_of({blanks, sizeof blanks}, end) == std::string_view::npos;
}

void RowParser::ParseLine(FieldCutter& cutter, std::string_view text, char* line, ParsedRows& rows,
                          Row& row) const
{
    const std::size_t count = cutter.Cut(line, text.size(), rows.hasQuotes);
    if (!HasFields(cutter, count, text)) {
        row.problem = count == 0 ? RowProblem::QUOTE : RowProblem::FIELD_COUNT;
        return;
    }
    const auto field = [&](std::size_t position) { return TrimmedField(cutter.Field(line, position)); };
    row.problem = ReadKey(field(layout_.key), row);
    if (row.problem == RowProblem::NONE && layout_.hasAlleles) {
        const Alleles alleles = {field(layout_.effectAllele), field(layout_.otherAllele)};
        row.problem = AlleleProblem(alleles, layout_.form.missing);
        if (row.problem == RowProblem::NONE)
            rows.alleles.back() = alleles;
    }
    if (row.problem == RowProblem::NONE)
        row.problem =
            ReadNumbers(cutter.Field(line, layout_.effectSize), cutter.Field(line, layout_.spread), row);
}

void RowParser::Parse(ParsedRows& rows) const
{
    rows.rows.clear();
    rows.alleles.clear();
    rows.lineOfZero = LineOfZero(rows.text);
    if (rows.lineOfZero)
        return;
    TextBlock& text = rows.text;
    const std::string_view all(text.begin, static_cast<std::size_t>(text.end - text.begin));
    rows.lineOfStrange = LineOfStrange(all);
    rows.hasQuotes = all.find('"') != std::string_view::npos;
    FieldCutter cutter(layout_.separator, layout_.fieldCount);
    std::uint32_t number = 0;
    for (char* line = text.begin; line < text.end; ++number) {
        auto* const newline =
            static_cast<char*>(std::memchr(line, '\n', static_cast<std::size_t>(text.end - line)));
        char* const next = newline == nullptr ? text.end : newline + 1;
        char* end = newline == nullptr ? text.end : newline;
        if (end > line && end[-1] == '\r')
            --end;
        const auto size = static_cast<std::size_t>(end - line);
        if (!IsBlankLine({line, size})) {
            Row& row = rows.rows.emplace_back();
            row.line = number;
            if (layout_.hasAlleles)
                rows.alleles.emplace_back();
            ParseLine(cutter, {line, size}, line, rows, row);
        }
        line = next;
    }
    rows.lineCount = number;
}

} // namespace host
