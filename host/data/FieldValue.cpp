#include "host/data/FieldValue.h"

#include "host/text/AsciiCase.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace host {

namespace {

constexpr std::string_view DIGITS = "0123456789";

/// Spaces beyond ASCII: no-break, figure, thin, narrow no-break, ideographic, and the byte-order mark.
constexpr std::string_view WIDE_BLANKS[] = {"\u00A0", "\u2007", "\u2009", "\u202F", "\u3000", "\uFEFF"};

/// The minus sign, and the dashes that typists and word processors put in its place.
constexpr std::string_view MINUS_SIGNS[] = {"\u2212", "\u2012", "\u2013", "\uFF0D"};

bool IsDigits(std::string_view text)
{
    return !text.empty() && text.find_first_not_of(DIGITS) == std::string_view::npos;
}

/// The text with one character of ASCII in place of each of the others.
template <std::size_t N>
std::string Replaced(std::string_view text, const std::string_view (&others)[N], char replacement)
{
    std::string replaced(text);
    for (const std::string_view other : others)
        for (std::size_t at = replaced.find(other); at != std::string::npos; at = replaced.find(other, at))
            replaced.replace(at, other.size(), 1, replacement);
    return replaced;
}

std::string_view WithoutSign(std::string_view text)
{
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    return text;
}

/// Whether the text is digits in groups of three, of which the first may be shorter and is not 0.
bool IsGrouped(std::string_view text, char separator)
{
    std::size_t end = text.find(separator); // npos, which is above 3 as well, when there is none
    if (end > 3 || !IsDigits(text.substr(0, end)) || text[0] == '0')
        return false;
    while (end != std::string_view::npos) {
        text.remove_prefix(end + 1);
        end = text.find(separator);
        if (std::min(end, text.size()) != 3 || !IsDigits(text.substr(0, 3)))
            return false;
    }
    return true;
}

/// Whether the text, which has no sign, is digits with one mark among them, and perhaps an exponent.
bool IsDecimal(std::string_view text, char mark)
{
    const std::size_t exponent = text.find_first_of("eE");
    if (exponent != std::string_view::npos && !IsDigits(WithoutSign(text.substr(exponent + 1))))
        return false;
    text = text.substr(0, exponent);
    const std::size_t at = text.find(mark);
    if (at == std::string_view::npos || text.size() < 2)
        return false;
    const std::string_view whole = text.substr(0, at);
    const std::string_view fraction = text.substr(at + 1);
    return (whole.empty() || IsDigits(whole)) && (fraction.empty() || IsDigits(fraction));
}

/// Whether the text is a number whose thousands are separated, and by what.
bool HasThousands(std::string_view text, char mark)
{
    const std::string_view whole = WithoutSign(text).substr(0, WithoutSign(text).find(mark));
    constexpr std::string_view SEPARATORS = " ,.'";
    return std::any_of(SEPARATORS.begin(), SEPARATORS.end(),
                       [&](char separator) { return separator != mark && IsGrouped(whole, separator); });
}

/// The text with plain blanks and minus signs, trimmed.
std::string Plain(std::string_view text)
{
    const std::string plain = Replaced(Replaced(text, WIDE_BLANKS, ' '), MINUS_SIGNS, '-');
    return std::string(Trimmed(plain));
}

[[noreturn]] void Fail(std::string_view text, const std::string& rest)
{
    throw UnusableInput(fmt::format("'{}' is {}", text, rest));
}

/// Whether the text is one that people write where a value is missing: no letters and digits, or such a word.
bool MayBeMissing(std::string_view text)
{
    constexpr std::string_view WORDS[] = {
        "\u2014",        "#N/A",       "N.A.", "N.A",     "N / A",  "n.d.", "ND",  "NR",
        "n.r.",          "NS",         "n.s.", "none",    "nil",    "null", "NaN", "not reported",
        "not available", "not stated", "miss", "missing", "unknown"};
    if (text.find(',') != std::string_view::npos) // parts the list of --missing
        return false;
    const bool hasLetters = std::any_of(text.begin(), text.end(), [](unsigned char c) {
        return c >= 0x80 || (c >= '0' && c <= '9') ||
               (UpperCase(static_cast<char>(c)) >= 'A' && UpperCase(static_cast<char>(c)) <= 'Z');
    });
    return !hasLetters || std::any_of(std::begin(WORDS), std::end(WORDS),
                                      [text](std::string_view word) { return EqualInAnyCase(text, word); });
}

/// Says what a field is that is no number.
[[noreturn]] void Explain(std::string_view text, const std::string& plain, char mark)
{
    const char other = mark == ',' ? '.' : ',';
    if (plain.ends_with('%'))
        Fail(text, "not a number but a percentage: write all values of the column as fractions.");
    constexpr std::string_view BOUNDS[] = {"<", ">", "=", "~", "\u2264", "\u2265", "\u2248"};
    for (const std::string_view bound : BOUNDS)
        if (plain.starts_with(bound))
            Fail(text, "not a number but a bound or an approximation: write the number itself, or leave the "
                       "field empty.");
    if (IsGrouped(WithoutSign(plain), other))
        Fail(text,
             fmt::format("not a number with the decimal {0}: --decimal {1} takes the {1} for the decimal "
                         "mark; one that separates thousands has to go from the file.",
                         NameOfMark(mark), NameOfMark(other)));
    if (HasThousands(plain, mark) || HasThousands(plain, other))
        Fail(text, "not a number that can be read: its thousands are separated; write the digits without "
                   "separator (see also --decimal).");
    if (IsDecimal(WithoutSign(plain), other))
        Fail(text, fmt::format("not a number with the decimal {}: --decimal {} reads it.", NameOfMark(mark),
                               NameOfMark(other)));
    if (MayBeMissing(plain))
        Fail(text,
             fmt::format("not a number. If it stands for a missing value, --missing NA,{} says so.", text));
    Fail(text, "not a number.");
}

/// Reads a number of ASCII characters.
FieldNumber ReadPlain(std::string number, char mark)
{
    if (mark == ',') {
        if (number.find('.') != std::string::npos || std::count(number.begin(), number.end(), ',') > 1)
            return {};
        std::replace(number.begin(), number.end(), ',', '.');
    }
    const std::string_view digits = number.starts_with('+') && !number.starts_with("+-")
                                        ? std::string_view(number).substr(1)
                                        : std::string_view(number);
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::result_out_of_range)
        return {NumberKind::OUTSIDE};
    if (error != std::errc() || end != digits.data() + digits.size())
        return {};
    // from_chars accepts "inf" and "nan". The number that stands for a missing value would vanish silently.
    const bool isFinite = std::isfinite(value) && !KXMV::IsMissing(value);
    return {isFinite ? NumberKind::NUMBER : NumberKind::NOT_FINITE, value};
}

/// Whether the text, which has no mark, is a number.
bool IsNumberWithoutMark(std::string_view number)
{
    const std::size_t exponent = number.find_first_of("eE");
    return IsGrouped(number, ' ') || IsGrouped(number, '\'') ||
           (IsDigits(number.substr(0, exponent)) &&
            (exponent == std::string_view::npos || IsDigits(WithoutSign(number.substr(exponent + 1)))));
}

DecimalEvidence PointOf(std::string_view number)
{
    return IsGrouped(number, '.') ? DecimalEvidence::POINT_OR_THOUSANDS : DecimalEvidence::POINT;
}

} // namespace

const char* NameOfMark(char mark)
{
    return mark == ',' ? "comma" : "point";
}

std::string_view WithoutBlanks(std::string_view text)
{
    for (bool isTrimmed = false; !isTrimmed;) {
        text = Trimmed(text);
        isTrimmed = true;
        for (const std::string_view blank : WIDE_BLANKS) {
            const bool leads = text.starts_with(blank);
            const bool trails = !leads && text.ends_with(blank);
            isTrimmed = isTrimmed && !leads && !trails;
            text.remove_prefix(leads ? blank.size() : 0);
            text.remove_suffix(trails ? blank.size() : 0);
        }
    }
    return text;
}

/// Numbers with a point at most are told without a copy: they are most.
DecimalEvidence EvidenceOf(std::string_view text)
{
    using Evidence = DecimalEvidence;
    const std::size_t comma = text.rfind(',');
    const std::size_t point = text.rfind('.');
    const bool isComma =
        comma != std::string_view::npos && (point == std::string_view::npos || point < comma);
    if (double value = 0;
        !isComma && ParsePlainNumber(text, value) && std::count(text.begin(), text.end(), '.') < 2)
        return point == std::string_view::npos ? Evidence::NONE : PointOf(WithoutSign(text));
    const char mark = isComma ? ',' : '.';
    const std::string plain = Plain(text);
    const std::string_view number = WithoutSign(plain);
    if (comma == point) // neither occurs
        return IsNumberWithoutMark(number) ? Evidence::NONE : Evidence::NO_NUMBER;
    if (!IsGrouped(number, mark)) {
        const bool isNumber = IsDecimal(number, mark) || HasThousands(number, mark);
        return !isNumber ? Evidence::NO_NUMBER : isComma ? Evidence::COMMA : Evidence::POINT;
    }
    if (std::count(number.begin(), number.end(), mark) > 1) // a decimal mark occurs once
        return isComma ? Evidence::POINT : Evidence::COMMA;
    return isComma ? Evidence::COMMA_OR_THOUSANDS : Evidence::POINT_OR_THOUSANDS;
}

FieldNumber ReadFieldNumber(std::string_view text, char decimalMark)
{
    return ReadPlain(Plain(text), decimalMark);
}

double ParseFieldNumber(std::string_view field, char decimalMark)
{
    const std::string_view text = WithoutBlanks(field);
    const FieldNumber number = ReadFieldNumber(text, decimalMark);
    switch (number.kind) {
    case NumberKind::NUMBER:
        break;
    case NumberKind::NO_NUMBER:
        Explain(text, Plain(text), decimalMark);
    case NumberKind::NOT_FINITE:
        Fail(text, "not a finite number.");
    case NumberKind::OUTSIDE:
        Fail(text, "outside the range of numbers that can be stored.");
    }
    return number.value;
}

} // namespace host
