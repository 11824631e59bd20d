#include "host/plots/PictureMakers.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/Measures.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

constexpr double SIDE = 380;

/// The quantity that the measure compares between the groups.
std::string Outcome(const AnalysisData& data)
{
    return RowOf(BINARY_MEASURES, data.settings.GetBinaryEstType()).groupQuantity;
}

/// The line on which treatment minus control is `effect`.
Layer LineOfEffect(const Extent& control, double effect, Layer::Kind kind, const char* color,
                   std::string legend)
{
    return LineBetween({control.First(), control.First() + effect}, {control.Last(), control.Last() + effect},
                       kind, color, std::move(legend));
}

Picture LabbePlot(const AnalysisData& data, const MABinModel& model, const PlotOfGroup& plot)
{
    const std::vector<double> control = model.GetLabbePlotX()[plot.row];
    const std::vector<double> treatment = model.GetLabbePlotY()[plot.row];
    Extent both;
    both.Cover(control);
    both.Cover(treatment);
    both.Pad(0.08);

    Picture picture = NewScatterPlot(NameOfGroupPlot({"labbe", "L'Abbé plot", ""}, plot), SIDE, SIDE);
    const std::string outcome = Outcome(data);
    picture.x = EffectAxis(data.measure, outcome + " in the control group", both);
    picture.y = EffectAxis(data.measure, outcome + " in the treatment group", both);
    picture.layers = {
        NullLine({both.First(), both.First()}, {both.Last(), both.Last()}),
        LineOfEffect(both, plot.estimate, Layer::Kind::DASHED_LINE, color::ACCENT, "Pooled effect"),
        Bubbles(control, treatment, model.GetLabbePlotW()[plot.row])};
    picture.description =
        fmt::format("{}: {} in the treatment group over {} in the control group of {}, with the line of no "
                    "effect and that "
                    "of the pooled {}.",
                    picture.title, outcome, outcome, CountOfStudies(control.size()), data.measure.name);
    return Finished(std::move(picture));
}

} // namespace

std::vector<Picture> LabbePictures(const AnalysisData& data)
{
    std::vector<Picture> pictures;
    const MABinModel* const model = data.analysis.Binary();
    if (model == nullptr || model->GetLabbePlotX().empty())
        return pictures;
    std::vector<PlotOfGroup> plots = GroupsOrAll(data);
    // The library has no row for a group whose value is that of all studies.
    std::erase_if(plots, [&](const PlotOfGroup& plot) {
        return plot.number > 0 && data.base.GetUniGroup()[plot.row] == OVERALL_GROUP;
    });
    for (std::size_t row = 0; row < plots.size(); ++row) {
        plots[row].row = row;
        if (IsWorthAPicture(data, plots[row]))
            pictures.push_back(LabbePlot(data, *model, plots[row]));
    }
    return pictures;
}

} // namespace host
