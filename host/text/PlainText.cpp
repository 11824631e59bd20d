#include "host/text/PlainText.h"

#include "host/text/NumberText.h"

#include <utf8proc.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <vector>

namespace host {

namespace {

constexpr std::size_t LONGEST_FILE_NAME_PART = 40;
constexpr utf8proc_int32_t REPLACEMENT = 0xFFFD;
constexpr const char* ELLIPSIS = "…";

using CodePoints = std::vector<utf8proc_int32_t>;

bool IsNoCharacter(utf8proc_int32_t codePoint)
{
    return (codePoint & 0xFFFE) == 0xFFFE || (codePoint >= 0xFDD0 && codePoint <= 0xFDEF);
}

utf8proc_int32_t Printable(utf8proc_int32_t codePoint)
{
    if (IsNoCharacter(codePoint))
        return REPLACEMENT;
    const utf8proc_category_t category = utf8proc_category(codePoint);
    const bool breaksLine = category == UTF8PROC_CATEGORY_ZL || category == UTF8PROC_CATEGORY_ZP;
    return category == UTF8PROC_CATEGORY_CC || breaksLine ? ' ' : codePoint;
}

CodePoints CodePointsOf(std::string_view text)
{
    CodePoints codePoints;
    const auto* next = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto* const end = next + text.size();
    while (next < end) {
        utf8proc_int32_t codePoint = 0;
        const utf8proc_ssize_t length = utf8proc_iterate(next, end - next, &codePoint);
        codePoints.push_back(length > 0 ? Printable(codePoint) : REPLACEMENT);
        next += std::max<utf8proc_ssize_t>(length, 1);
    }
    return codePoints;
}

std::string TextOf(CodePoints::const_iterator first, CodePoints::const_iterator last)
{
    std::string text;
    for (; first != last; ++first) {
        utf8proc_uint8_t bytes[4];
        const utf8proc_ssize_t length = utf8proc_encode_char(*first, bytes);
        text.append(bytes, bytes + length);
    }
    return text;
}

/// Width of a character by its class, in the widest of the usual fonts.
double WidthOf(utf8proc_int32_t codePoint)
{
    const int cells = utf8proc_charwidth(codePoint);
    if (cells != 1)
        return cells / 2.0;
    if (codePoint < 0x80) {
        const std::string_view narrow = "fijlrtI.,:;'|!()[]/\\ -\"`";
        const std::string_view wide = "mwMW@%";
        const auto character = static_cast<char>(codePoint);
        if (narrow.find(character) != std::string_view::npos)
            return 0.42;
        if (wide.find(character) != std::string_view::npos)
            return 1.0;
    }
    const bool isUpper = utf8proc_category(codePoint) == UTF8PROC_CATEGORY_LU;
    return isUpper ? 0.76 : 0.64;
}

double WidthOf(CodePoints::const_iterator first, CodePoints::const_iterator last)
{
    double width = 0;
    for (; first != last; ++first)
        width += WidthOf(*first);
    return width;
}

bool IsRelation(utf8proc_int32_t c)
{
    return c == '=' || c == '<' || c == '>';
}

/// Whether a line may end before `next`, which is not the first. What "p = 0.03" says stays together.
bool MayEndBefore(CodePoints::const_iterator next, CodePoints::const_iterator first)
{
    const utf8proc_int32_t before = *(next - 1);
    if (before == ' ')
        return !IsRelation(*next) && (next - 1 == first || !IsRelation(*(next - 2)));
    const bool isBehindWide = utf8proc_charwidth(before) == 2 && utf8proc_charwidth(*next) > 0;
    return before == '-' || before == '/' || isBehindWide;
}

/// Where the line that starts at `first` ends: at the last place that fits and where a line may end, else at
/// the last that fits.
CodePoints::const_iterator EndOfLine(CodePoints::const_iterator first, CodePoints::const_iterator last,
                                     double limit)
{
    auto end = last;
    double width = WidthOf(*first); // one character is always taken
    for (auto next = first + 1; next != last; ++next) {
        if (MayEndBefore(next, first))
            end = next;
        width += WidthOf(*next);
        if (width > limit && *next != ' ')
            return end == last ? next : end;
    }
    return last;
}

std::string WithoutEndingBlanks(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace

std::string PlainText(std::string_view text)
{
    const CodePoints codePoints = CodePointsOf(text);
    return TextOf(codePoints.begin(), codePoints.end());
}

std::u32string Composed(std::string_view text)
{
    CodePoints codePoints = CodePointsOf(text);
    const utf8proc_ssize_t length = utf8proc_normalize_utf32(
        codePoints.data(), static_cast<utf8proc_ssize_t>(codePoints.size()), UTF8PROC_COMPOSE);
    return {codePoints.begin(), codePoints.begin() + length};
}

std::string TextOf(char32_t character)
{
    const CodePoints one = {static_cast<utf8proc_int32_t>(character)};
    return TextOf(one.begin(), one.end());
}

std::string WithoutCharacters(std::string_view text, char replacement,
                              const std::function<bool(char32_t)>& isUnwanted)
{
    CodePoints codePoints = CodePointsOf(text);
    std::replace_if(
        codePoints.begin(), codePoints.end(),
        [&](utf8proc_int32_t codePoint) { return isUnwanted(static_cast<char32_t>(codePoint)); },
        replacement);
    return TextOf(codePoints.begin(), codePoints.end());
}

std::size_t DisplayWidth(std::string_view text)
{
    // Most cells are ASCII, and a table has millions of them.
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return text.size();
    std::size_t width = 0;
    for (const utf8proc_int32_t codePoint : CodePointsOf(text))
        width += static_cast<std::size_t>(utf8proc_charwidth(codePoint));
    return width;
}

double TextWidth(std::string_view text, bool isBold)
{
    const CodePoints codePoints = CodePointsOf(text);
    return WidthOf(codePoints.begin(), codePoints.end()) * (isBold ? 1.12 : 1);
}

std::string ShortenedText(std::string_view text, double limit)
{
    const CodePoints codePoints = CodePointsOf(text);
    auto headEnd = codePoints.begin();
    auto tail = codePoints.end();
    if (WidthOf(headEnd, tail) <= limit)
        return TextOf(headEnd, tail);
    double width = 1; // of the ellipsis
    // The start takes two thirds, because it distinguishes names and titles; years are at the end.
    while (width + WidthOf(*headEnd) <= limit * 2 / 3)
        width += WidthOf(*headEnd++);
    while (width + WidthOf(*(tail - 1)) <= limit)
        width += WidthOf(*--tail);
    return TextOf(codePoints.begin(), headEnd) + ELLIPSIS + TextOf(tail, codePoints.end());
}

std::vector<std::string> WrappedText(std::string_view text, double limit)
{
    const CodePoints codePoints = CodePointsOf(text);
    std::vector<std::string> lines;
    for (auto first = codePoints.begin(); first != codePoints.end();) {
        const auto end = EndOfLine(first, codePoints.end(), limit);
        lines.push_back(WithoutEndingBlanks(TextOf(first, end)));
        first = std::find_if(end, codePoints.end(), [](utf8proc_int32_t c) { return c != ' '; });
    }
    return lines.empty() ? std::vector<std::string>{""} : lines;
}

std::string FileNamePart(std::string_view text)
{
    std::string part;
    for (const char c : text.substr(0, LONGEST_FILE_NAME_PART)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && std::isalnum(byte) != 0)
            part += static_cast<char>(std::tolower(byte));
        else if (!part.empty() && part.back() != '-')
            part += '-';
    }
    if (!part.empty() && part.back() == '-')
        part.pop_back();
    return part;
}

std::string LabelText(std::string label)
{
    std::replace_if(
        label.begin(), label.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return label.empty() ? NO_VALUE : label;
}

std::vector<std::string> LabelTexts(const std::vector<std::string>& labels, const std::vector<int>& positions)
{
    std::vector<std::string> texts;
    texts.reserve(positions.size());
    for (const int position : positions)
        texts.push_back(LabelText(labels[static_cast<std::size_t>(position)]));
    return texts;
}

CompactTexts LabelList(const std::vector<std::string>& labels, const std::vector<int>& positions)
{
    CompactTexts texts;
    for (const int position : positions)
        texts.push_back(LabelText(labels[static_cast<std::size_t>(position)]));
    return texts;
}

} // namespace host
