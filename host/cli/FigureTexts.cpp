#include "host/cli/FigureTexts.h"

#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <cstddef>
#include <optional>

namespace host {

namespace {

struct Unit
{
    std::string_view name;
    double pixels;
};

constexpr Unit UNITS[] = {{"px", 1}, {"pt", 96.0 / 72}, {"mm", 96 / 25.4}, {"cm", 96 / 2.54}, {"in", 96}};

/// The unit at the end of the text, which loses it; none where there is none.
std::optional<double> TakeUnit(std::string_view& text)
{
    for (const Unit& unit : UNITS) {
        if (!text.ends_with(unit.name))
            continue;
        text = Trimmed(text.substr(0, text.size() - unit.name.size()));
        return unit.pixels;
    }
    return {};
}

/// A side between a centimetre and five metres, beyond which no picture is meant.
double SideOf(std::string_view text, double unit)
{
    constexpr double LEAST = 37;
    constexpr double MOST = 18900;
    const double pixels = ParseNumber(text) * unit;
    if (!(pixels >= LEAST && pixels <= MOST))
        throw UnusableInput(fmt::format(
            "'{}' is not from 1 cm to 5 m; it is in px where no unit follows (px, pt, mm, cm or in).", text));
    return pixels;
}

} // namespace

std::pair<std::string, std::string> ParseTextPair(std::string_view text)
{
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos || comma != text.rfind(','))
        throw UnusableInput(fmt::format("'{}' is not two texts with a comma between them.", text));
    return {std::string(Trimmed(text.substr(0, comma))), std::string(Trimmed(text.substr(comma + 1)))};
}

std::pair<double, double> ParseLimits(std::string_view text)
{
    const auto [low, high] = ParseTextPair(text);
    const std::pair limits(ParseNumber(low), ParseNumber(high));
    if (!(limits.first < limits.second))
        throw UnusableInput(fmt::format("'{}' is not a lower and a higher number.", text));
    return limits;
}

PictureSize ParseSize(std::string_view text)
{
    std::string_view numbers = Trimmed(text);
    const double unit = TakeUnit(numbers).value_or(1);
    const std::size_t by = numbers.find('x');
    if (by == std::string_view::npos)
        return {SideOf(numbers, unit), {}};
    std::string_view width = Trimmed(numbers.substr(0, by));
    const std::optional<double> unitOfWidth = TakeUnit(width); // "170mmx120mm" names it twice
    return {SideOf(width, unitOfWidth.value_or(unit)), SideOf(Trimmed(numbers.substr(by + 1)), unit)};
}

} // namespace host
