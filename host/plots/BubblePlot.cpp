#include "host/plots/BubbleDrawing.h"
#include "host/plots/PictureMakers.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The effects of a line at these places. Without an intercept there is the slope alone.
std::vector<double> LineAt(const std::vector<double>& x, const std::vector<double>& coefficients)
{
    const double intercept = coefficients.size() > 1 ? coefficients.front() : 0;
    std::vector<double> effects;
    effects.reserve(x.size());
    for (const double place : x)
        effects.push_back(intercept + coefficients.back() * place);
    return effects;
}

/// The library has limits at the points of the curve; fewer than two of them make no band.
CovariateLine LineOf(const AnalysisData& data, std::size_t index)
{
    const MABaseModel& base = data.base;
    CovariateLine line;
    line.x = base.GetBubbleCICurveX()[index];
    line.lower = base.GetBubbleCICurveLower()[index];
    line.upper = base.GetBubbleCICurveUpper()[index];
    if (line.x.size() < 2) {
        Extent x;
        x.Cover(base.GetBubbleXs()[index]);
        line = {};
        line.x = {x.First(), (x.First() + x.Last()) / 2, x.Last()};
    } else if (data.request.hasPredictionBand) {
        line.predictedLower = base.GetBubblePICurveLower()[index];
        line.predictedUpper = base.GetBubblePICurveUpper()[index];
    }
    line.effects = LineAt(line.x, base.GetBubbleCoefs()[index]);
    return line;
}

CovariateSlope SlopeOf(const MABaseModel& base, std::size_t index)
{
    const std::vector<double> coefficients = base.GetBubbleCoefs()[index];
    return {coefficients.size() > 1 ? coefficients.front() : KXMV::Missing(), coefficients.back(),
            base.GetBubbleSlopeCILower()[index], base.GetBubbleSlopeCIUpper()[index],
            base.GetBubbleSlopeSig()[index]};
}

std::string TitleOf(const AnalysisData& data, const std::string& covariate)
{
    const std::string title = AxisTitle(covariate);
    return data.settings.GetCenterBubblePlot() ? title + " (less its mean)" : title;
}

Picture BubblePlot(const AnalysisData& data, std::size_t index)
{
    const MABaseModel& base = data.base;
    const std::string covariate =
        LabelText(data.request.variables.GetVarAt(data.request.bubbleCovariates[index]).name);
    CovariatePlot plot = {.name = NumberedName({"bubble", "Bubble plot", ""}, index + 1, covariate),
                          .covariateTitle = TitleOf(data, covariate),
                          .effectName = data.measure.AnalysisName(),
                          .hasNoEffect = data.measure.hasNoEffect,
                          .level = data.level,
                          .numbers = data.numbers,
                          .x = base.GetBubbleXs()[index],
                          .effects = base.GetEffectSize(),
                          .weights = base.GetBubbleW()[index],
                          .line = LineOf(data, index),
                          .slope = SlopeOf(base, index),
                          .description = {}};
    // A study without the covariate is no bubble, and gives the axis no room.
    for (std::size_t study = 0; study < plot.x.size(); ++study)
        if (!IsNumber(plot.x[study]))
            plot.effects[study] = KXMV::Missing();
    plot.description = fmt::format("{}: the {} of {} over {}, with the line of the meta-regression on it.",
                                   plot.name.title, data.measure.name,
                                   CountOfStudies(DrawablePoints(plot.x, plot.effects).size()), covariate);
    return DrawBubbles(plot, AnalysisAxis(data.measure, EffectExtent(plot)));
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
