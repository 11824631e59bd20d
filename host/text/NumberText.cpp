#include "host/text/NumberText.h"

#include "host/text/NumberFormat.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace host {

namespace {

constexpr int LEAST_DECIMALS = 4;
constexpr int MOST_DECIMALS = 12;

/// The text of a number, without a sign when it shows 0.
std::string WithoutSignOfZero(std::string text)
{
    if (text.front() == '-' && text.find_first_of("123456789") == std::string::npos)
        text.erase(0, 1);
    return text;
}

template <class ToText>
std::vector<std::string> AlignedTexts(const std::vector<double>& values, const ToText& toText)
{
    std::vector<std::string> texts;
    std::size_t width = 0;
    for (const double value : values) {
        texts.push_back(toText(value));
        width = std::max(width, texts.back().size());
    }
    for (std::string& text : texts)
        text.insert(0, width - text.size(), ' ');
    return texts;
}

template <class ToText>
std::vector<std::string> JoinedTexts(const Estimates& estimates, const ToText& toText)
{
    const std::vector<std::string> lower = AlignedTexts(estimates.lower, toText);
    const std::vector<std::string> upper = AlignedTexts(estimates.upper, toText);
    std::vector<std::string> texts = AlignedTexts(estimates.values, toText);
    for (std::string& text : texts)
        text += ' ';
    texts.resize(lower.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        texts[i] += fmt::format("[{}, {}]", lower[i], upper[i]);
    return texts;
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
    if (std::abs(value) >= 1e10)
        return fmt::format("{:.6g}", value);
    return WithoutSignOfZero(fmt::format("{:.{}f}", value, decimals));
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

std::vector<std::string> EstimateTexts(const Estimates& estimates, int decimals)
{
    return JoinedTexts(estimates, [decimals](double value) { return FixedText(value, decimals); });
}

std::vector<std::string> EstimateTexts(const Estimates& estimates)
{
    return JoinedTexts(estimates, NumberText);
}

std::vector<std::string> EstimateTexts(const Estimates& estimates, const NumberFormat& format)
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
