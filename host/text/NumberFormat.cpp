#include "host/text/NumberFormat.h"

#include <fmt/format.h>

#include <cstddef>
#include <string_view>

namespace host {

namespace {

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
