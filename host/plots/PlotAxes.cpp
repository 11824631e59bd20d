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

/// The number with the digits that distinguish neighbours. Adding 0 makes a negative zero positive.
std::string TextAt(double number, double step)
{
    const double digits = std::log10(std::max(std::abs(number) / step, 1.0)) + 2;
    return fmt::format("{:.{}g}", number + 0.0, std::clamp(static_cast<int>(digits), 6, 15));
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

/// Ticks at multiples of a round step of at least `shortest`.
std::vector<Tick> TicksInSteps(const Extent& numbers, double shortest)
{
    return TicksWithRoom([&](int most) {
        const double step = RoundStep(std::max(numbers.Length() / most, shortest));
        std::vector<Tick> ticks;
        for (const double number : Multiples(step, numbers.First(), numbers.Last()))
            ticks.push_back({number, TextAt(number, step)});
        return ticks;
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

std::vector<Tick> EquidistantTicks(const Extent& logarithms)
{
    Extent ratios;
    ratios.Cover(std::exp(logarithms.First()));
    ratios.Cover(std::exp(logarithms.Last()));
    std::vector<Tick> ticks = NumberTicks(ratios);
    std::erase_if(ticks, [](const Tick& tick) { return tick.at <= 0; });
    for (Tick& tick : ticks)
        tick.at = std::log(tick.at);
    return ticks;
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
