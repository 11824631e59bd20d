#pragma once

#include <string>
#include <string_view>

namespace host {

/// The text without the blanks around it, spaces of Unicode included that spreadsheets and web pages put
/// there.
std::string_view WithoutBlanks(std::string_view text);

/// What the text of a number says about the decimal mark of its file.
enum class DecimalEvidence
{
    NONE,
    POINT,
    COMMA,
    POINT_OR_THOUSANDS, ///< such as "1.234", where the point may separate thousands
    COMMA_OR_THOUSANDS
};

DecimalEvidence EvidenceOf(std::string_view text);

/// The finite number that a field is as a whole, blanks around it aside: digits with the decimal mark and an
/// optional exponent. A minus sign of Unicode and a dash before the number are minus signs. Throws
/// UnusableInput with a sentence that quotes the text and says what it is in place of a number, such as a
/// percentage, a bound or a number with separated thousands: none of them is read as another number than was
/// meant.
double ParseFieldNumber(std::string_view text, char decimalMark);

/// As ParseFieldNumber, when the text is a number that needs no second look: digits with a point.
bool ParsePlainNumber(std::string_view text, double& value);

} // namespace host
