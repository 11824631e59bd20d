#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

namespace host {

/// The text without the blanks around it, spaces of Unicode included that spreadsheets and web pages put
/// there.
std::string_view WithoutBlanks(std::string_view text);

/// What a text says about the decimal mark of its file.
enum class DecimalEvidence
{
    NO_NUMBER, ///< by either mark; percentages and bounds too
    NONE,      ///< a number without mark
    POINT,
    COMMA,
    POINT_OR_THOUSANDS, ///< such as "1.234", where the point may separate thousands
    COMMA_OR_THOUSANDS
};
inline constexpr std::size_t DECIMAL_EVIDENCES = 6;

DecimalEvidence EvidenceOf(std::string_view text);

/// "comma" or "point".
const char* NameOfMark(char mark);

enum class NumberKind
{
    NUMBER,
    NO_NUMBER,
    NOT_FINITE, ///< the value is infinite, NaN or the number that stands for a missing value
    OUTSIDE     ///< of the range of numbers that can be stored
};

struct FieldNumber
{
    NumberKind kind = NumberKind::NO_NUMBER;
    double value = 0;
};

/// The number that a field is, as ParseFieldNumber() reads it.
FieldNumber ReadFieldNumber(std::string_view text, char decimalMark);

/// The finite number that a field is as a whole, blanks around it aside: digits with the decimal mark and an
/// optional exponent. A minus sign of Unicode and a dash before the number are minus signs. Throws
/// UnusableInput with a sentence that quotes the text and says what it is in place of a number, such as a
/// percentage, a bound or a number with separated thousands: none of them is read as another number than was
/// meant.
double ParseFieldNumber(std::string_view text, char decimalMark);

/// As ParseFieldNumber, when the text is a number that needs no second look: digits with a point.
inline bool ParsePlainNumber(std::string_view text, double& value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value) &&
           !KXMV::IsMissing(value);
}

} // namespace host
