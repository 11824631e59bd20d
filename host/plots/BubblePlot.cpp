#include "host/plots/PictureMakers.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

constexpr double LONGEST_TITLE = 36; // of an axis, in units of the font's size

/// The lower limits from left to right, then the upper limits from right to left.
std::vector<Point> BandOutline(const MABaseModel& base, std::size_t covariate)
{
    const std::vector<double> x = base.GetBubbleCICurveX()[covariate];
    std::vector<Point> outline = DrawablePoints(x, base.GetBubbleCICurveLower()[covariate]);
    const std::vector<Point> upper = DrawablePoints(x, base.GetBubbleCICurveUpper()[covariate]);
    outline.insert(outline.end(), upper.rbegin(), upper.rend());
    return outline;
}

Layer FittedLine(const std::vector<double>& coefficients, const Extent& x)
{
    const double intercept = coefficients.size() > 1 ? coefficients.front() : 0;
    const auto at = [&](double place) { return Point{place, intercept + coefficients.back() * place}; };
    return LineBetween(at(x.First()), at(x.Last()), Layer::Kind::LINE, color::ACCENT, "Fitted line");
}

std::string CovariateTitle(const AnalysisData& data, const std::string& covariate)
{
    const std::string title = ShortenedText(covariate, LONGEST_TITLE);
    return data.settings.GetCenterBubblePlot() ? title + " (less its mean)" : title;
}

Picture BubblePlot(const AnalysisData& data, std::size_t index)
{
    const MABaseModel& base = data.base;
    const std::string covariate =
        LabelText(data.request.variables.GetVarAt(data.request.bubbleCovariates[index]).name);
    const std::vector<double> xs = base.GetBubbleXs()[index];
    const std::vector<Point> band = BandOutline(base, index);
    Layer bubbles = Bubbles(xs, base.GetEffectSize(), base.GetBubbleW()[index]);
    const std::vector<Point> studies = bubbles.pieces.front();

    Extent x;
    x.Cover(xs);
    const Layer line = FittedLine(base.GetBubbleCoefs()[index], x);
    Extent y;
    y.Cover(studies, &Point::y);
    y.Cover(line.pieces.front(), &Point::y);
    y.Cover(band, &Point::y);
    x.Pad(0.07);
    y.Pad(0.07);

    Picture picture = NewScatterPlot(NumberedName({"bubble", "Bubble plot", ""}, index + 1, covariate));
    picture.x = NumberAxis(CovariateTitle(data, covariate), x);
    picture.y = AnalysisAxis(data.measure, y);
    picture.layers.push_back(
        {Layer::Kind::AREA, color::BAND, {band}, {}, 0, fmt::format("{} band of the line", data.level)});
    if (data.measure.hasNoEffect && y.Contains(0))
        picture.layers.push_back(NullLine({x.First(), 0}, {x.Last(), 0}));
    picture.layers.push_back(std::move(bubbles));
    picture.layers.push_back(line);
    picture.description =
        fmt::format("{}: the {} of {} over {}, with the line of the meta-regression on it.", picture.title,
                    data.measure.name, CountOfStudies(studies.size()), covariate);
    return Finished(std::move(picture));
}

} // namespace

std::vector<Picture> BubblePictures(const AnalysisData& data)
{
    std::vector<Picture> pictures;
    const std::vector<int> fitted = data.base.GetBubbleFlags();
    for (std::size_t i = 0; i < fitted.size(); ++i)
        if (fitted[i] == 1)
            pictures.push_back(BubblePlot(data, i));
    return pictures;
}

} // namespace host
