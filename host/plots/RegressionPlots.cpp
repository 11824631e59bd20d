#include "host/plots/RegressionPlots.h"

#include "host/plots/BubbleDrawing.h"
#include "host/plots/ForestDrawing.h"
#include "host/plots/InfluencePictures.h"
#include "host/plots/ResidualPlots.h"
#include "host/plots/VisibleMarks.h"
#include "host/report/ReportColumns.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

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

std::string DescriptionOf(const RegressionData& data, const std::string& title, std::size_t studyCount,
                          const std::string& covariate, bool hasLine)
{
    const bool hasOthers = data.request.settings.GetNumOfModelEffects() > 1;
    const std::string average = hasOthers ? ", which averages over the other predictors of the studies" : "";
    return fmt::format("{}: the {} of {} over {}{}.", title, data.measure.name, CountOfStudies(studyCount),
                       covariate, hasLine ? ", with the line of the meta-regression" + average : "");
}

/// Whether the covariate is in no other effect than its own, so that its coefficient is the slope of the
/// line.
bool IsAloneInItsEffect(const std::vector<std::string>& effects, const std::string& covariate)
{
    return std::none_of(effects.begin(), effects.end(), [&](const std::string& effect) {
        return effect != covariate && effect.find(covariate) != std::string::npos;
    });
}

CovariateSlope SlopeOf(const RegressionData& data, const std::string& covariate)
{
    CovariateSlope slope = {KXMV::Missing(), KXMV::Missing(), KXMV::Missing(), KXMV::Missing(),
                            KXMV::Missing()};
    const std::vector<std::string> names = data.ParameterNames();
    const auto own = std::find(names.begin(), names.end(), covariate);
    if (own == names.end() || !IsAloneInItsEffect(data.EffectNames(), covariate))
        return slope;
    const auto parameter = static_cast<std::size_t>(own - names.begin());
    slope.slope = data.output.GetEstimation()[parameter];
    slope.lower = data.output.GetBetaConfInterValLower()[parameter];
    slope.upper = data.output.GetBetaConfInterValUpper()[parameter];
    slope.significance = data.output.GetBetaTestPValue()[parameter];
    if (names.size() == 2 && data.request.settings.GetInterceptUse())
        slope.intercept = data.output.GetEstimation()[1 - parameter];
    return slope;
}

CovariateLine LineOf(const MARegBubblePlot& plot, bool hasPredictionBand)
{
    CovariateLine line = {plot.lineX, plot.lineEffects, plot.lineLower, plot.lineUpper, {}, {}};
    if (hasPredictionBand) {
        line.predictedLower = plot.linePILower;
        line.predictedUpper = plot.linePIUpper;
    }
    return line;
}

Picture BubblePicture(const RegressionData& data, std::size_t number, int variable)
{
    const MARegBubblePlot& bubbles = data.analysis.bubbles.at(variable);
    const std::string covariate = LabelText(data.request.variables.GetVarAt(variable).name);
    CovariatePlot plot = {.name = NumberedName({"bubble", "Bubble plot", ""}, number, covariate),
                          .covariateTitle = AxisTitle(covariate),
                          .effectName = data.measure.AnalysisName(),
                          .hasNoEffect = data.measure.hasNoEffect,
                          .level = data.level,
                          .numbers = data.numbers,
                          .x = bubbles.studyX,
                          .effects = bubbles.studyEffects,
                          .weights = bubbles.studyWeights,
                          .line = LineOf(bubbles, data.options.picture.hasPredictionBand),
                          .slope = SlopeOf(data, covariate),
                          .description = {}};
    // The data may not determine a line beside a collinear covariate.
    const bool hasLine = !DrawablePoints(bubbles.lineX, bubbles.lineEffects).empty();
    plot.description =
        DescriptionOf(data, plot.name.title, DrawablePoints(plot.x, plot.effects).size(), covariate, hasLine);
    return DrawBubbles(plot, EffectAxis(data.measure, data.measure.name, EffectExtent(plot)));
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
    for (Picture& picture : ResidualPictures(data))
        pictures.push_back(WithVisibleMarks(std::move(picture)));
    for (Picture& picture : InfluencePicturesOf(InfluenceTableOf(data)))
        pictures.push_back(WithVisibleMarks(std::move(picture)));
    return pictures;
}

} // namespace host
