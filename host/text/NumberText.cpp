#include "host/text/NumberText.h"

#include "host/text/NumberFormat.h"

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

/// One part of all estimates, as wide in each of them.
struct AlignedPart
{
    CompactTexts texts;
    std::size_t width = 0;

    void AppendTo(CompactTexts& joined, std::size_t i) const
    {
        const std::string_view text = texts.View(i);
        joined.ExtendBlanks(width - text.size());
        joined.Extend(text);
    }
};

template <class ToText>
AlignedPart AlignedTexts(const std::vector<double>& values, const ToText& toText)
{
    AlignedPart part = {TextsOf(values, toText)};
    for (std::size_t i = 0; i < values.size(); ++i)
        part.width = std::max(part.width, part.texts.View(i).size());
    return part;
}

template <class ToText>
CompactTexts JoinedTexts(const Estimates& estimates, const ToText& toText)
{
    const AlignedPart values = AlignedTexts(estimates.values, toText);
    const AlignedPart lower = AlignedTexts(estimates.lower, toText);
    const AlignedPart upper = AlignedTexts(estimates.upper, toText);
    CompactTexts joined;
    joined.Reserve(estimates.lower.size(), values.width + lower.width + upper.width + 5);
    for (std::size_t i = 0; i < estimates.lower.size(); ++i) {
        joined.push_back({});
        const bool hasValue = !estimates.values.empty() && HasValue(estimates.values[i]);
        const bool hasInterval = HasValue(estimates.lower[i]) || HasValue(estimates.upper[i]);
        if (hasValue || (hasInterval && !estimates.values.empty())) {
            values.AppendTo(joined, i);
            joined.Extend(" ");
        }
        if (!hasInterval) {
            joined.ExtendBlanks(hasValue ? lower.width + upper.width + 3 : 0);
            joined.Extend(NO_VALUE);
            continue;
        }
        joined.Extend("[");
        lower.AppendTo(joined, i);
        joined.Extend(", ");
        upper.AppendTo(joined, i);
        joined.Extend("]");
    }
    return joined;
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

CompactTexts EstimateTexts(const Estimates& estimates, int decimals)
{
    return JoinedTexts(estimates, [decimals](double value) { return FixedText(value, decimals); });
}

CompactTexts EstimateTexts(const Estimates& estimates, const NumberFormat& format)
{
    return JoinedTexts(estimates, format);
}

std::string NumberFormat::operator()(double value) const
{
    if (!digits || !IsNumber(value))
        return NumberText(value);
    const std::string text = FixedText(value, *digits);
    const bool showsZero = text.find_first_of("123456789") == std::string::npos;
    return showsZero && value != 0 ? fmt::format("{:.1g}", value) : text;
}

} // namespace host
