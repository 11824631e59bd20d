#include "host/plots/BubbleDrawing.h"

#include "host/text/NumberText.h"
#include "host/text/PlainText.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace host {

namespace {

constexpr double LONGEST_TITLE = 36; // of an axis, in units of the font's size
constexpr double PADDING = 0.07;

/// The parabola through three points, at another place; NaN where one of them is missing.
double ParabolaAt(double place, const std::vector<double>& x, const std::vector<double>& y, std::size_t first)
{
    double sum = 0;
    for (std::size_t i = first; i < first + 3; ++i) {
        if (!IsNumber(y[i]))
            return std::numeric_limits<double>::quiet_NaN();
        double share = 1;
        for (std::size_t j = first; j < first + 3; ++j)
            if (j != i)
                share *= (place - x[j]) / (x[i] - x[j]);
        sum += share * y[i];
    }
    return sum;
}

/// Adds the values at the ends of the axis: a straight line goes on as it ends.
void ExtendLine(const std::vector<double>& x, const Extent& extent, std::vector<double>& values)
{
    const std::size_t first = x.size() - 3;
    const double before = ParabolaAt(extent.First(), x, values, 0);
    values.push_back(ParabolaAt(extent.Last(), x, values, first));
    values.insert(values.begin(), before);
}

/// Adds the limits at the ends of the axis: the square of their distance from a straight line, a variance, is
/// a parabola.
void ExtendLimits(const std::vector<double>& x, const std::vector<double>& effects, const Extent& extent,
                  std::vector<double>& lower, std::vector<double>& upper)
{
    if (lower.empty())
        return;
    std::vector<double> squares;
    for (std::size_t i = 0; i < lower.size(); ++i) {
        const double half = (upper[i] - lower[i]) / 2;
        squares.push_back(IsNumber(lower[i]) && IsNumber(upper[i]) ? half * half : KXMV::Missing());
    }
    ExtendLine(x, extent, squares);
    const double before = std::sqrt(squares.front());
    const double behind = std::sqrt(squares.back());
    lower.insert(lower.begin(), effects.front() - before);
    upper.insert(upper.begin(), effects.front() + before);
    lower.push_back(effects.back() - behind);
    upper.push_back(effects.back() + behind);
}

Extent CovariateExtent(const CovariatePlot& plot)
{
    Extent x;
    x.Cover(plot.x);
    x.Pad(PADDING);
    return x;
}

/// The line between the ends of the axis.
CovariateLine WholeLine(const CovariatePlot& plot)
{
    CovariateLine line = plot.line;
    if (line.x.size() < 3 || !(line.x.front() < line.x.back()))
        return line;
    const Extent extent = CovariateExtent(plot);
    ExtendLine(plot.line.x, extent, line.effects);
    ExtendLimits(plot.line.x, line.effects, extent, line.lower, line.upper);
    ExtendLimits(plot.line.x, line.effects, extent, line.predictedLower, line.predictedUpper);
    line.x.insert(line.x.begin(), extent.First());
    line.x.push_back(extent.Last());
    return line;
}

/// "effect = 0.251468 - 0.0291017 covariate": with the digits that a covariate such as a year needs.
std::string Equation(const CovariatePlot& plot)
{
    const CovariateSlope& slope = plot.slope;
    if (!IsNumber(slope.intercept) || !IsNumber(slope.slope))
        return {};
    return fmt::format(
        "{} = {} {} {:.6g} × {}", plot.effectName, WithMinusSign(fmt::format("{:.6g}", slope.intercept)),
        WithMinusSign(slope.slope < 0 ? "-" : "+"), std::abs(slope.slope), plot.covariateTitle);
}

std::string SlopeText(const CovariatePlot& plot)
{
    const CovariateSlope& slope = plot.slope;
    if (!IsNumber(slope.slope))
        return {};
    const auto number = [&](double value) { return WithMinusSign(plot.numbers(value)); };
    std::string text = "Slope " + number(slope.slope);
    if (IsNumber(slope.lower) && IsNumber(slope.upper))
        text += fmt::format(" [{} CI {}, {}]", plot.level, number(slope.lower), number(slope.upper));
    if (IsNumber(slope.significance))
        text += ", p " + EqualsText(slope.significance);
    return text;
}

std::vector<std::string> NotesOf(const CovariatePlot& plot)
{
    std::vector<std::string> notes = {SlopeText(plot), Equation(plot)};
    std::erase(notes, "");
    return notes;
}

Layer Band(std::vector<Point> outline, const char* color, std::string legend)
{
    return {Layer::Kind::AREA, color, {std::move(outline)}, {}, 0, std::move(legend)};
}

} // namespace

Extent EffectExtent(const CovariatePlot& plot)
{
    const CovariateLine line = WholeLine(plot);
    Extent y;
    for (const std::vector<double>* values :
         {&plot.effects, &line.effects, &line.lower, &line.upper, &line.predictedLower, &line.predictedUpper})
        y.Cover(*values);
    y.Pad(PADDING);
    return y;
}

Picture DrawBubbles(const CovariatePlot& plot, Axis effectAxis)
{
    const CovariateLine line = WholeLine(plot);
    const Extent x = CovariateExtent(plot);
    Picture picture = NewScatterPlot(plot.name);
    picture.x = CovariateAxis(plot.covariateTitle, plot.x, x);
    picture.y = std::move(effectAxis);
    if (std::vector<Point> region = Between(line.x, line.predictedLower, line.predictedUpper);
        !region.empty())
        picture.layers.push_back(Band(std::move(region), color::PREDICTION, plot.level + " prediction band"));
    if (std::vector<Point> band = Between(line.x, line.lower, line.upper); !band.empty())
        picture.layers.push_back(Band(std::move(band), color::BAND, plot.level + " band of the line"));
    if (plot.hasNoEffect && picture.y.first <= 0 && picture.y.last >= 0)
        picture.layers.push_back(NullLine({x.First(), 0}, {x.Last(), 0}));
    picture.layers.push_back(Bubbles(plot.x, plot.effects, plot.weights));
    if (std::vector<Point> fitted = DrawablePoints(line.x, line.effects); !fitted.empty())
        picture.layers.push_back(
            {Layer::Kind::LINE, color::ACCENT, {std::move(fitted)}, {}, 1.5, "Fitted line"});
    picture.description = plot.description;
    return WithNotes(Finished(std::move(picture)), NotesOf(plot));
}

std::string AxisTitle(const std::string& covariate)
{
    return ShortenedText(covariate, LONGEST_TITLE);
}

} // namespace host
