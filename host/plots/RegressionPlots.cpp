#include "host/plots/RegressionPlots.h"

#include "host/plots/ForestDrawing.h"
#include "host/plots/InfluencePictures.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/plots/VisibleMarks.h"
#include "host/report/ReportColumns.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

constexpr double LONGEST_TITLE = 36; // of an axis, in units of the font's size

/// A ratio is shown on its natural scale, other effects on that of the analysis.
ForestInterval ShownInterval(const ForestInterval& place, const Measure& measure)
{
    if (!measure.isRatio)
        return place;
    const std::vector<double> shown = Exponentials({place.estimate, place.lower, place.upper});
    return {shown[0], shown[1], shown[2]};
}

std::vector<ForestRow> StudyRows(const RegressionData& data)
{
    double weights = 0;
    for (const MARegForestRow& study : data.analysis.forest)
        weights += study.weight;
    std::vector<ForestRow> rows;
    for (const MARegForestRow& study : data.analysis.forest) {
        const std::string& label = data.request.studyLabels[static_cast<std::size_t>(study.record)];
        ForestRow row = {ForestRow::Kind::STUDY, LabelText(label)};
        row.place = {study.effect, study.ciLower, study.ciUpper};
        row.shown = ShownInterval(row.place, data.measure);
        row.weight = study.weight / weights;
        row.records = {study.record};
        row.fitted = {study.fit, study.fitLower, study.fitUpper};
        rows.push_back(std::move(row));
    }
    return rows;
}

Picture ForestPicture(const RegressionData& data)
{
    Forest forest = {
        .name = "forest",
        .title = "Forest plot",
        .description = {},
        .remarkHeader = {},
        .hasWeights = true,
        .rows = StudyRows(data),
        .notes = {Capitalised(WordingOfModel(data.options.settings)),
                  fmt::format("Pale diamonds: fitted values with their {} intervals", data.level)},
        .hasColumns = true};
    forest.description = fmt::format(
        "{}: the {} of {} with {} intervals, squares by weight, and the values that the meta-regression fits "
        "as pale diamonds.",
        forest.title, data.measure.name, CountOfStudies(forest.rows.size()), data.level);
    const ForestRequest& request = data.request.forest;
    return DrawForest({.measure = data.measure,
                       .names = {data.measure.name, data.measure.symbol, data.level, "IV",
                                 data.isRandom ? "Random" : "Fixed"},
                       .decimals = data.decimals,
                       .showsRatios = data.measure.isRatio,
                       .overall = KXMV::Missing(),
                       .request = request,
                       .style = &StyleOf(request.options.layout),
                       .groupNames = GroupNamesOf(request)},
                      forest);
}

/// The lower limits from left to right, then the upper limits from right to left.
std::vector<Point> BandOutline(const MARegBubblePlot& plot)
{
    std::vector<Point> outline = DrawablePoints(plot.lineX, plot.lineLower);
    const std::vector<Point> upper = DrawablePoints(plot.lineX, plot.lineUpper);
    outline.insert(outline.end(), upper.rbegin(), upper.rend());
    return outline;
}

std::string DescriptionOf(const RegressionData& data, const Picture& picture, std::size_t studyCount,
                          const std::string& covariate, bool hasLine)
{
    const bool hasOthers = data.request.settings.GetNumOfModelEffects() > 1;
    const std::string average = hasOthers ? ", which averages over the other predictors of the studies" : "";
    return fmt::format("{}: the {} of {} over {}{}.", picture.title, data.measure.name,
                       CountOfStudies(studyCount), covariate,
                       hasLine ? ", with the line of the meta-regression" + average : "");
}

Picture BubblePicture(const RegressionData& data, std::size_t number, int variable)
{
    const MARegBubblePlot& plot = data.analysis.bubbles.at(variable);
    const std::string covariate = LabelText(data.request.variables.GetVarAt(variable).name);
    const std::vector<Point> band = BandOutline(plot);
    const std::vector<Point> line = DrawablePoints(plot.lineX, plot.lineEffects);
    Layer bubbles = Bubbles(plot.studyX, plot.studyEffects, plot.studyWeights);
    const std::size_t studyCount = bubbles.pieces.front().size();

    Extent x;
    x.Cover(plot.studyX);
    Extent y;
    y.Cover(plot.studyEffects);
    y.Cover(line, &Point::y);
    y.Cover(band, &Point::y);
    x.Pad(0.07);
    y.Pad(0.07);

    Picture picture = NewScatterPlot(NumberedName({"bubble", "Bubble plot", ""}, number, covariate));
    picture.x = NumberAxis(ShortenedText(covariate, LONGEST_TITLE), x);
    picture.y = EffectAxis(data.measure, data.measure.name, y);
    if (!band.empty())
        picture.layers.push_back(
            {Layer::Kind::AREA, color::BAND, {band}, {}, 0, fmt::format("{} band of the line", data.level)});
    if (y.Contains(0))
        picture.layers.push_back(NullLine({x.First(), 0}, {x.Last(), 0}));
    picture.layers.push_back(std::move(bubbles));
    if (!line.empty()) // the data may not determine it beside a collinear covariate
        picture.layers.push_back({Layer::Kind::LINE, color::ACCENT, {line}, {}, 1.5, "Fitted line"});
    picture.description = DescriptionOf(data, picture, studyCount, covariate, !line.empty());
    return Finished(std::move(picture));
}

} // namespace

std::vector<Picture> MakeRegressionPictures(const RegressionData& data)
{
    if (data.analysis.forest.empty())
        return {};
    std::vector<Picture> pictures = {ForestPicture(data)};
    std::size_t number = 0;
    for (const int covariate : data.request.settings.GetCovariates())
        pictures.push_back(WithVisibleMarks(BubblePicture(data, ++number, covariate)));
    for (Picture& picture : InfluencePicturesOf(InfluenceTableOf(data)))
        pictures.push_back(WithVisibleMarks(std::move(picture)));
    return pictures;
}

} // namespace host
