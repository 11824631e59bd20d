#pragma once

#include "host/text/CompactTexts.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What stands for a missing value and for NaN.
inline constexpr const char* NO_VALUE = "-";

/// Whether the library gave a value, which may be infinite: neither missing nor NaN.
bool HasValue(double value);
bool HasAnyValue(const std::vector<double>& values);
/// Whether a value can be drawn: it is finite, neither missing nor NaN.
bool IsNumber(double value);

/// A number with `decimals` digits behind the point, for columns; a huge one in scientific form.
std::string FixedText(double value, int decimals);

/// A number of any size with four decimals, or with three significant digits where four decimals would show
/// fewer than two.
std::string NumberText(double value);

/// The number's text with the minus sign, U+2212, in place of hyphens, as pictures show it.
std::string WithMinusSign(std::string_view number);

/// A probability with four decimals, or "< 0.0001". A p-value that underflowed is not shown as 0.
std::string PValueText(double p);

/// A p-value behind its symbol: "= 0.0425" or "< 0.0001".
std::string EqualsText(double p);

/// A fraction as "12.3%".
std::string PercentText(double fraction, int decimals);

/// The text of each number.
template <class ToText>
CompactTexts TextsOf(const std::vector<double>& values, const ToText& toText)
{
    CompactTexts texts;
    for (const double value : values)
        texts.push_back(toText(value));
    return texts;
}

/// The numbers times 100; missing stays missing.
std::vector<double> InPercent(std::vector<double> fractions);

/// Missing stays missing.
std::vector<double> SquareRoots(std::vector<double> values);

/// The exponentials of the numbers; missing stays missing.
std::vector<double> Exponentials(std::vector<double> values);

/// Decimals that suit effects with these standard errors: three significant digits of the smallest, but no
/// less than four.
int DecimalsFor(const std::vector<double>& stdErrors);

} // namespace host
