#include "host/plots/PlotAxes.h"

#include "host/text/NumberText.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace host {

namespace {

constexpr int MOST_TICKS = 7;
constexpr double SHORTEST_AXIS = 320; // in pixels
constexpr double SHORTEST = 1e-9;     // length of a range that can be drawn, relative to its ends

double LogOfTen()
{
    return std::log(10.0);
}

/// The smallest of ... 1, 2, 5, 10, 20 ... that is at least `least`.
double RoundStep(double least)
{
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least)
            return factor * power;
    return 10 * power;
}

std::string PowerText(double power)
{
    const bool isShort = std::abs(power) <= 4;
    return isShort ? fmt::format("{:.6g}", std::pow(10.0, power)) : fmt::format("1e{:g}", power);
}

/// Multiples of the step from `first` on. The loop counts, because adding a step to a much larger number may
/// not change it.
std::vector<double> Multiples(double step, double first, double last)
{
    std::vector<double> multiples;
    const double start = std::ceil(first / step);
    for (int i = 0; (start + i) * step <= last && i <= 2 * MOST_TICKS; ++i)
        multiples.push_back((start + i) * step);
    return multiples;
}

/// The power of ten of the first digit. The margin keeps that of a rounded 0.001 from being one less.
int FirstPower(double number)
{
    return static_cast<int>(std::floor(std::log10(std::abs(number)) + 1e-9));
}

using Texts = std::vector<std::string>;

Texts WithDecimals(const std::vector<double>& numbers, int decimals)
{
    Texts texts;
    for (const double number : numbers) // adding 0 makes a negative zero positive
        texts.push_back(fmt::format("{:.{}f}", number + 0.0, decimals));
    return texts;
}

/// Zero is plain.
Texts WithPower(const std::vector<double>& numbers, int power, int decimals)
{
    Texts texts;
    for (const double number : numbers)
        texts.push_back(
            number == 0 ? "0" : fmt::format("{:.{}f}e{}", number / std::pow(10.0, power), decimals, power));
    return texts;
}

std::size_t LongestOf(const Texts& texts)
{
    std::size_t longest = 0;
    for (const std::string& text : texts)
        longest = std::max(longest, text.size());
    return longest;
}

/// Multiples of the step with the decimals that it has: 0.5, 1.0, 1.5; with a common power of ten where that
/// makes long texts shorter.
Texts TextsOf(const std::vector<double>& numbers, double step)
{
    constexpr std::size_t longest = 8;
    constexpr int mostDigits = 15;
    if (numbers.empty())
        return {};
    const double largest = std::max(std::abs(numbers.front()), std::abs(numbers.back()));
    const int power = FirstPower(std::max(largest, step));
    const int digits = std::min(power - FirstPower(step), mostDigits);
    Texts withPower = WithPower(numbers, power, digits);
    if (std::abs(power) > mostDigits)
        return withPower;
    Texts texts = WithDecimals(numbers, std::clamp(-FirstPower(step), 0, 2 * mostDigits));
    const bool areLong = LongestOf(texts) > std::max(longest, LongestOf(withPower));
    return areLong ? withPower : texts;
}

bool HaveRoom(const std::vector<Tick>& ticks)
{
    double width = 0;
    for (const Tick& tick : ticks)
        width += (TextWidth(tick.text) + 1) * FONT_SIZE;
    return width <= SHORTEST_AXIS;
}

/// The largest number of ticks whose texts do not overlap.
template <class Make>
std::vector<Tick> TicksWithRoom(const Make& makeTicks)
{
    int most = MOST_TICKS;
    while (most > 1 && !HaveRoom(makeTicks(most)))
        --most;
    return makeTicks(most);
}

std::vector<Tick> TicksAt(const std::vector<double>& numbers, const Texts& texts)
{
    std::vector<Tick> ticks;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        ticks.push_back({numbers[i], texts[i]});
    return ticks;
}

/// Ticks at multiples of a round step of at least `shortest`.
std::vector<Tick> TicksInSteps(const Extent& numbers, double shortest)
{
    return TicksWithRoom([&](int most) {
        const double step = RoundStep(std::max(numbers.Length() / most, shortest));
        const std::vector<double> multiples = Multiples(step, numbers.First(), numbers.Last());
        return TicksAt(multiples, TextsOf(multiples, step));
    });
}

std::vector<Tick> DecadeTicks(const Extent& logarithms, int most)
{
    const double step = RoundStep(std::max(1.0, logarithms.Length() / LogOfTen() / most));
    std::vector<Tick> ticks;
    for (const double power :
         Multiples(step, logarithms.First() / LogOfTen(), logarithms.Last() / LogOfTen()))
        ticks.push_back({power * LogOfTen(), PowerText(power)});
    return ticks;
}

/// 1, 2 and 5 times each power of ten.
std::vector<Tick> ThreeTicksADecade(const Extent& logarithms)
{
    std::vector<Tick> ticks;
    const double firstPower = std::floor(logarithms.First() / LogOfTen());
    for (const double power : Multiples(1, firstPower, logarithms.Last() / LogOfTen())) {
        for (const double factor : {1.0, 2.0, 5.0}) {
            const double ratio = factor * std::pow(10.0, power);
            ticks.push_back({std::log(ratio), fmt::format("{:.6g}", ratio)});
        }
    }
    return ticks;
}

/// On log axes, 1 stands between 0.5 and 2.
std::string WithoutLastZeros(const std::string& text)
{
    if (text.find('.') == std::string::npos || text.find('e') != std::string::npos)
        return text;
    const std::string digits = text.substr(0, text.find_last_not_of('0') + 1);
    return digits.ends_with('.') ? digits.substr(0, digits.size() - 1) : digits;
}

std::vector<Tick> EquidistantTicks(const Extent& logarithms)
{
    Extent ratios;
    ratios.Cover(std::exp(logarithms.First()));
    ratios.Cover(std::exp(logarithms.Last()));
    std::vector<Tick> ticks = NumberTicks(ratios);
    std::erase_if(ticks, [](const Tick& tick) { return tick.at <= 0; });
    for (Tick& tick : ticks)
        tick = {std::log(tick.at), WithoutLastZeros(tick.text)};
    return ticks;
}

/// Each different number once, ascending; at most three.
std::vector<double> FirstDifferent(const std::vector<double>& values)
{
    std::vector<double> different;
    for (const double value : values) {
        const auto place = std::lower_bound(different.begin(), different.end(), value);
        if (IsNumber(value) && (place == different.end() || *place != value))
            different.insert(place, value);
        if (different.size() > 2)
            break;
    }
    return different;
}

/// Of two values, such as the codes of two groups, which may be centred: these two, with as few decimals as
/// they need, but no more than two digits beyond those in which they differ.
std::vector<Tick> TicksAtBoth(const std::vector<double>& values)
{
    constexpr int mostDecimals = 15;
    const int most = std::clamp(2 - FirstPower(values[1] - values[0]), 0, mostDecimals);
    int decimals = 0;
    for (const std::string& text : WithDecimals(values, most)) {
        const std::string needed = WithoutLastZeros(text);
        const std::size_t point = needed.find('.');
        decimals =
            std::max(decimals, point == std::string::npos ? 0 : static_cast<int>(needed.size() - point - 1));
    }
    return TicksAt(values, WithDecimals(values, decimals));
}

} // namespace

void Extent::Cover(double value)
{
    if (!IsNumber(value))
        return;
    first_ = std::min(first_, value);
    last_ = std::max(last_, value);
}

void Extent::Cover(const std::vector<double>& values)
{
    for (const double value : values)
        Cover(value);
}

void Extent::Cover(const std::vector<Point>& points, double Point::*coordinate)
{
    for (const Point& point : points)
        Cover(point.*coordinate);
}

void Extent::Pad(double share)
{
    const double least = SHORTEST * std::max(std::abs(first_), std::abs(last_));
    const double padding = Length() > least ? share * Length() : std::max(0.5, least);
    first_ -= padding;
    last_ += padding;
}

std::vector<Point> DrawablePoints(const std::vector<double>& x, const std::vector<double>& y)
{
    std::vector<Point> points;
    for (std::size_t i = 0; i < x.size(); ++i)
        if (IsNumber(x[i]) && IsNumber(y[i]))
            points.push_back({x[i], y[i]});
    return points;
}

std::vector<Tick> NumberTicks(const Extent& numbers)
{
    return TicksInSteps(numbers, 0);
}

std::vector<Tick> WholeNumberTicks(const Extent& numbers)
{
    return TicksInSteps(numbers, 1);
}

std::vector<Tick> RatioTicks(const Extent& logarithms)
{
    const double decades = logarithms.Length() / LogOfTen();
    std::vector<Tick> ticks = decades > MOST_TICKS / 3.0
                                  ? TicksWithRoom([&](int most) { return DecadeTicks(logarithms, most); })
                              : decades > 0.9 ? ThreeTicksADecade(logarithms)
                                              : EquidistantTicks(logarithms);
    std::erase_if(ticks, [&](const Tick& tick) { return !logarithms.Contains(tick.at); });
    return ticks;
}

Axis NumberAxis(std::string title, const Extent& extent)
{
    return {std::move(title), extent.First(), extent.Last(), NumberTicks(extent)};
}

Axis CovariateAxis(std::string title, const std::vector<double>& values, const Extent& extent)
{
    const std::vector<double> different = FirstDifferent(values);
    if (different.size() == 2)
        return {std::move(title), extent.First(), extent.Last(), TicksAtBoth(different)};
    const bool areWhole = std::all_of(values.begin(), values.end(), [](double value) {
        return !IsNumber(value) || value == std::floor(value);
    });
    return {std::move(title), extent.First(), extent.Last(),
            areWhole ? WholeNumberTicks(extent) : NumberTicks(extent)};
}

Axis EffectAxis(const Measure& measure, const std::string& quantity, const Extent& extent)
{
    if (!measure.isRatio)
        return NumberAxis(Capitalised(quantity), extent);
    return {Capitalised(quantity) + " (log scale)", extent.First(), extent.Last(), RatioTicks(extent)};
}

Axis AnalysisAxis(const Measure& measure, const Extent& extent)
{
    return EffectAxis(measure, measure.isRatio ? measure.name : measure.AnalysisName(), extent);
}

} // namespace host
