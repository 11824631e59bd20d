#include "host/text/NumberText.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace host {

namespace {

constexpr int LEAST_DECIMALS = 4;
constexpr int MOST_DECIMALS = 12;
constexpr double HUGE_FROM = 1e10;
constexpr int MOST_DECIMALS_OF_HUGE = 5; // in scientific form

/// The text of a number, without a sign when it shows 0.
std::string WithoutSignOfZero(std::string text)
{
    if (text.front() == '-' && text.find_first_of("123456789") == std::string::npos)
        text.erase(0, 1);
    return text;
}

} // namespace

bool HasValue(double value)
{
    return !KXMV::IsMissing(value) && !std::isnan(value);
}

bool HasAnyValue(const std::vector<double>& values)
{
    return std::any_of(values.begin(), values.end(), HasValue);
}

bool IsNumber(double value)
{
    return HasValue(value) && std::isfinite(value);
}

std::string FixedText(double value, int decimals)
{
    if (!HasValue(value))
        return NO_VALUE;
    if (std::abs(value) >= HUGE_FROM)
        return fmt::format("{:.{}g}", value, std::min(decimals, MOST_DECIMALS_OF_HUGE) + 1);
    char text[64]; // a sign, ten digits, a point and the decimals
    if (decimals > 50)
        return WithoutSignOfZero(fmt::format("{:.{}f}", value, decimals));
    const auto [end, error] =
        std::to_chars(std::begin(text), std::end(text), value, std::chars_format::fixed, decimals);
    return WithoutSignOfZero({text, end});
}

std::string NumberText(double value)
{
    const bool isSmall = value != 0 && std::abs(value) < 1e-3;
    return isSmall ? fmt::format("{:.3g}", value) : FixedText(value, LEAST_DECIMALS);
}

std::string WithMinusSign(std::string_view number)
{
    std::string text;
    for (const char c : number)
        text += c == '-' ? std::string("\u2212") : std::string(1, c);
    return text;
}

std::string PValueText(double p)
{
    return p >= 0 && p < 1e-4 ? "< 0.0001" : FixedText(p, LEAST_DECIMALS);
}

std::string EqualsText(double p)
{
    const std::string text = PValueText(p);
    return text.front() == '<' ? text : "= " + text;
}

std::string PercentText(double fraction, int decimals)
{
    return IsNumber(fraction) ? FixedText(100 * fraction, decimals) + '%' : NO_VALUE;
}

std::vector<double> InPercent(std::vector<double> fractions)
{
    for (double& fraction : fractions)
        if (!KXMV::IsMissing(fraction))
            fraction *= 100;
    return fractions;
}

std::vector<double> SquareRoots(std::vector<double> values)
{
    for (double& value : values)
        if (!KXMV::IsMissing(value))
            value = std::sqrt(value);
    return values;
}

std::vector<double> Exponentials(std::vector<double> values)
{
    for (double& value : values)
        if (!KXMV::IsMissing(value))
            value = std::exp(value);
    return values;
}

int DecimalsFor(const std::vector<double>& stdErrors)
{
    double smallest = 1;
    for (const double stdError : stdErrors)
        if (stdError > 0)
            smallest = std::min(smallest, stdError);
    const double wanted = 2 - std::floor(std::log10(smallest));
    return static_cast<int>(std::clamp<double>(wanted, LEAST_DECIMALS, MOST_DECIMALS));
}

} // namespace host
