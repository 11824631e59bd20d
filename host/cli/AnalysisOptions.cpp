#include "host/cli/AnalysisOptions.h"

#include "host/cli/OptionKinds.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;
using Definitions = std::vector<OptionDefinition>;
using Json = nlohmann::ordered_json;

constexpr Domain AT_LEAST_2 = {[](double x) { return x >= 2; }, "2 or above"};

OptionDefinition Descending(Settings& settings)
{
    return {.name = "descending",
            .help = "cumulative analysis: in descending order of the column",
            .store = [&settings](const std::string&) { settings.SetSortType(MAConst::SORT_DESCENDING); },
            .value = [&settings] { return Json(settings.GetSortType() == MAConst::SORT_DESCENDING); }};
}

/// Its name is the method; naming one asks for the analysis.
OptionDefinition TrimFill(Settings& settings)
{
    return {.name = "trim-fill",
            .argument = "NAME",
            .help = fmt::format("trim-and-fill by this estimator of the number of missing studies: {} "
                                "(default: none)",
                                NamesOf(TRIM_FILL_CHOICES)),
            .store =
                [&settings](const std::string& text) {
                    settings.SetTrimFillMethod(ValueOf(TRIM_FILL_CHOICES, text));
                    settings.SetIsTRIMFILL(true);
                },
            .value =
                [&settings] {
                    return settings.GetIsTRIMFILL()
                               ? Json(NameOf(TRIM_FILL_CHOICES, settings.GetTrimFillMethod()))
                               : Json();
                }};
}

OptionDefinition SmallStudyTest(Options& options)
{
    return {.name = "small-study-test",
            .argument = "TYPE",
            .help = "regression-based test (default: none): 0 effect on standard error; of tables also\n"
                    "1 odds-ratio score, 2 risk-ratio score, 3 effect on 1 / sample size",
            .store =
                [&options](const std::string& text) {
                    options.settings.SetRegBaseTestType(ValueOf(SMALL_STUDY_TEST_CHOICES, text));
                    options.runsSmallStudyTest = true;
                },
            .value =
                [&options] {
                    return options.runsSmallStudyTest
                               ? Json(static_cast<int>(options.settings.GetRegBaseTestType()))
                               : Json();
                }};
}

/// At least two, for a line to have a start and an end.
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

/// The first level given takes the place of the default ones.
OptionDefinition ContourLevel(Options& options)
{
    return {.name = "contour-level",
            .argument = "NUMBER",
            .help = fmt::format("significance level of a contour of --contours, repeatable (default {})",
                                fmt::join(ContourLevels(options.settings), ", ")),
            .isRepeatable = true,
            .store =
                [&options](const std::string& text) {
                    options.contourLevels.push_back(RequireInside(BETWEEN_0_AND_1, ParseNumber(text)));
                    options.settings.SetFunnelConTourCutoff(options.contourLevels);
                },
            .value = [&settings = options.settings] { return Json(ContourLevels(settings)); }};
}

Definitions GroupsAndOrder(Options& options)
{
    return {
        Column("subgroup", options.subgroup, "a model for each group of studies with equal values"),
        Column("cumulative", options.cumulative, "the model after each study, in order of the column"),
        Descending(options.settings),
        TextList("contrast", "COLUMN", options.contrasts,
                 "contrast coefficients of the studies, repeatable; for the fixed model"),
    };
}

Definitions SmallStudyEffects(Options& options)
{
    Settings& settings = options.settings;
    return {
        TrimFill(settings),
        OneOf("side", TRIM_SIDE_CHOICES, settings, &Settings::GetTrimFillSide, &Settings::SetTrimFillSide,
              "trims the largest effects (1) or the smallest (2)"),
        OneOf("trim-fill-model", MODEL_CHOICES, settings, &Settings::GetTFModelType,
              &Settings::SetTFModelType, "pooling model while trimming"),
        OneOf("trim-fill-tau2", TAU2_CHOICES, settings, &Settings::GetTFEstTauType,
              &Settings::SetTFEstTauType, "between-study variance estimator while trimming"),
        OneOf("trim-fill-knapp-hartung", KNAPP_HARTUNG_CHOICES, settings, &Settings::GetTFKnapHartAdjustType,
              &Settings::SetTFKnapHartAdjustType, "adjustment while trimming"),
        SmallStudyTest(options),
        OneOf("test-intercept", SWITCH_CHOICES, settings, &Settings::GetIsUseIntercept,
              &Settings::SetIsUseIntercept, "intercept of the regression-based test"),
        Flag("test-dispersion", settings, &Settings::GetMultiDisper, &Settings::SetMultiDiser,
             "multiplicative dispersion in the regression-based test, fixed model"),
    };
}

Definitions Plots(Options& options)
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

} // namespace

void AppendAnalysisOptions(std::vector<OptionDefinition>& all, Options& options)
{
    AppendGroup(all, "Groups, order and contrasts", GroupsAndOrder(options));
    AppendGroup(all, "Small-study effects", SmallStudyEffects(options));
    AppendGroup(all, "Plots", Plots(options));
}

} // namespace host
