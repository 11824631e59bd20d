#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;
using Json = nlohmann::ordered_json;

constexpr Domain AT_LEAST_2 = {[](double x) { return x >= 2; }, "2 or above"};

/// A line needs two points.
OptionDefinition FunnelPoints(Settings& settings)
{
    OptionDefinition option = Count("funnel-points", settings, &Settings::GetFunnelNPoints,
                                    &Settings::SetFunnelNPoints, "points of each line in the funnel plot");
    option.store = [&settings](const std::string& text) {
        settings.SetFunnelNPoints(RequireInside(AT_LEAST_2, ParseWholeNumber(text)));
    };
    return option;
}

std::vector<double> ContourLevels(const Settings& settings)
{
    std::vector<double> levels;
    settings.GetSetFunnelConTourCutoff(levels);
    return levels;
}

/// A percentage would be ambiguous: 95 is how others name the contour of the significance level 0.05.
double SignificanceLevel(const std::string& text)
{
    const double level = ParseNumber(text);
    if (level >= 50 && level < 100)
        throw UnusableInput(fmt::format("{0} is not between 0 and 1; a contour has the significance level of "
                                        "its test, {1:.10g} for {0} % confidence.",
                                        text, 1 - level / 100));
    return RequireInside(BETWEEN_0_AND_1, level);
}

/// The levels given replace the default ones.
OptionDefinition ContourLevel(Options& options)
{
    return {.name = "contour-level",
            .argument = "NUMBER",
            .help = fmt::format("significance level of a contour of --contours, repeatable (default {})",
                                fmt::join(ContourLevels(options.settings), ", ")),
            .isRepeatable = true,
            .store =
                [&options](const std::string& text) {
                    options.contourLevels.push_back(SignificanceLevel(text));
                    options.settings.SetFunnelConTourCutoff(options.contourLevels);
                },
            .value = [&settings = options.settings] { return Json(ContourLevels(settings)); }};
}

OptionDefinitions PlotsOf(Options& options)
{
    Settings& settings = options.settings;
    return {
        OneOf("funnel-y", FUNNEL_Y_CHOICES, settings, &Settings::GetFunnelYType, &Settings::SetFunnelYType,
              "vertical axis of the funnel plot"),
        FunnelPoints(settings),
        OneOf("contours", CONTOUR_CHOICES, settings, &Settings::GetFunnelConTourTesType,
              &Settings::SetFunnelConTourTesType, "test behind the contours of the funnel plot"),
        ContourLevel(options),
        TextList("bubble", "COLUMN", options.bubbles, "covariate of a bubble plot, repeatable"),
        Flag("center-bubble", settings, &Settings::GetCenterBubblePlot, &Settings::SetCenterBubblePlot,
             "centre the covariates of the bubble plots"),
        Count("bubble-points", settings, &Settings::GetBubbleCurveNPoints, &Settings::SetBubbleCurveNPoints,
              "points of the confidence band in a bubble plot"),
    };
}

template <class Value>
void RequireDifferent(const std::vector<Value>& values, const char* what)
{
    for (auto value = values.begin(); value != values.end(); ++value)
        if (std::find(values.begin(), value, *value) != value)
            throw UnusableInput(fmt::format("{} '{}' is given twice.", what, *value));
}

void CheckPlots(const Options& options)
{
    RequireDifferent(options.bubbles, "--bubble: column"); // a column has one plot
    RequireDifferent(options.contourLevels, "--contour-level:");
}

} // namespace

OptionGroup PlotOptions(Options& options)
{
    if (!HasSteps(options.command))
        return {};
    return {.heading = "Plots", .options = PlotsOf(options), .complete = [&options] { CheckPlots(options); }};
}

} // namespace host
