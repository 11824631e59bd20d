#include "host/text/TextParsing.h"

#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace host {

namespace {

/// std::from_chars does not accept a plus sign.
std::string_view WithoutPlus(std::string_view text) noexcept
{
    const bool isSigned = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return isSigned ? text.substr(1) : text;
}

template <class Number>
Number ParseWhole(std::string_view text, const char* expected)
{
    const std::string_view digits = WithoutPlus(Trimmed(text));
    Number value{};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::result_out_of_range)
        throw UnusableInput(fmt::format("'{}' is outside the range of numbers that can be stored.", text));
    if (error != std::errc() || end != digits.data() + digits.size())
        throw UnusableInput(fmt::format("'{}' is not {}.", text, expected));
    return value;
}

} // namespace

std::string_view Trimmed(std::string_view text) noexcept
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> PartsOfList(std::string_view list)
{
    std::vector<std::string_view> parts;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        parts.push_back(Trimmed(list.substr(start, end - start)));
        start = end + 1;
    }
    return parts;
}

std::size_t LineEndsIn(std::string_view text) noexcept
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isFirstOfTwo = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if ((text[i] == '\n' || text[i] == '\r') && !isFirstOfTwo)
            ++count;
    }
    return count;
}

double ParseNumber(std::string_view text)
{
    const double value = ParseWhole<double>(text, "a number");
    // from_chars accepts "inf" and "nan". The number that stands for a missing value would vanish silently.
    if (!std::isfinite(value) || KXMV::IsMissing(value))
        throw UnusableInput(fmt::format("'{}' is not a finite number.", text));
    return value;
}

int DecimalsIn(std::string_view number)
{
    const std::size_t end = std::min(number.find_first_of("eE"), number.size());
    const std::size_t point = std::min(number.find('.'), end);
    int exponent = 0;
    if (end < number.size()) {
        const std::string_view digits = WithoutPlus(number.substr(end + 1));
        std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    }
    return std::max(static_cast<int>(point == end ? 0 : end - point - 1) - exponent, 0);
}

int ParseWholeNumber(std::string_view text)
{
    return ParseWhole<int>(text, "a whole number");
}

} // namespace host
