#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace host {

/// `text` without the blanks around it.
std::string_view Trimmed(std::string_view text) noexcept;

/// The parts of a list that commas separate, without the blanks around them; one at least, which may be
/// empty. They refer to the text.
std::vector<std::string_view> PartsOfList(std::string_view list);

/// Number of line ends in `text`: LF, CRLF or CR.
std::size_t LineEndsIn(std::string_view text) noexcept;

/// The finite number that `text` is as a whole, blanks around it aside: digits with '.' as decimal point and
/// an optional exponent, whatever the locale. Throws UnusableInput with a sentence that quotes the text.
double ParseNumber(std::string_view text);

/// Digits behind the decimal point of a number's text, less its exponent, but not below 0: 2 for "0.50" and
/// "50e-2", 0 for "100".
int DecimalsIn(std::string_view number);

/// As ParseNumber, for whole numbers of the range of int.
int ParseWholeNumber(std::string_view text);

} // namespace host
