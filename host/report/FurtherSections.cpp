#include "host/report/FurtherSections.h"

#include "host/cli/Choices.h"
#include "host/report/ModelSections.h"
#include "host/report/ReportParts.h"
#include "host/text/StatusText.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Texts = std::vector<std::string>;

Texts VariableLabels(const std::vector<int>& positions, const KXVarList& variables)
{
    Texts labels;
    for (const int position : positions)
        labels.push_back(LabelText(variables.GetVarAt(position).name));
    return labels;
}

/// What the statuses of the contrasts say; under pooling of tables there are none.
Texts ContrastSentences(const Texts& labels, const std::vector<int>& statuses)
{
    Texts sentences = {"A contrast is the sum of the studies' effects, each times its coefficient."};
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        if (statuses[i] == 1)
            sentences.push_back(labels[i] + ": all coefficients are 0, which leaves nothing to test.");
        else if (statuses[i] == 2)
            sentences.push_back(labels[i] + ": tested without the studies that have no coefficient.");
    }
    return sentences;
}

std::string ImputedSentence(const AnalysisData& data)
{
    const bool isLargest = data.analysis.trimmedSide == MAConst::TRIM_SIDE_LARGEST;
    const bool isChosen = data.settings.GetTrimFillSide() == MAConst::TRIM_SIDE_AUTO;
    return fmt::format("Studies imputed by the {} estimator, as mirror images of the {} effects{}: {}.",
                       NameOf(TRIM_FILL_CHOICES, data.settings.GetTrimFillMethod()),
                       isLargest ? "largest" : "smallest",
                       isChosen ? " (the side that the data suggest)" : "", data.base.GetTFImputedN0());
}

/// The model of all studies, then the one that has the imputed studies too.
EffectRows ObservedAndFilled(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const EffectRows pooled = PooledRows(data);
    const auto both = [](const std::vector<double>& observed, double filled) {
        return std::vector<double>{observed.back(), filled};
    };
    EffectRows rows = {.ratios = {},
                       .effects = {both(pooled.effects.values, base.GetOverallTFEffectSize()),
                                   both(pooled.effects.lower, base.GetOverallTFCILower()),
                                   both(pooled.effects.upper, base.GetOverallTFCIUpper())},
                       .stdErrors = both(pooled.stdErrors, base.GetOverallTFStdError()),
                       .statistics = both(pooled.statistics, base.GetOverallTFZVal()),
                       .significances = both(pooled.significances, base.GetOverallTFSig())};
    if (data.binary)
        rows.ratios = {both(pooled.ratios.values, data.binary->GetOverallTFExpEffectSize()),
                       both(pooled.ratios.lower, data.binary->GetOverallTFExpCILower()),
                       both(pooled.ratios.upper, data.binary->GetOverallTFExpCIUpper())};
    return rows;
}

ReportSection ImputedStudies(const AnalysisData& data)
{
    const std::vector<double> effects = data.base.GetTFImputedEffectSize();
    if (effects.empty())
        return {};
    Texts numbers;
    numbers.reserve(effects.size());
    for (std::size_t i = 1; i <= effects.size(); ++i)
        numbers.push_back(std::to_string(i));
    const auto toText = [&](double value) { return data.EffectText(value); };
    return {"Imputed studies",
            {{"", numbers},
             {data.effect.AnalysisSymbol(), TextsOf(effects, toText)},
             {"SE", TextsOf(data.base.GetTFImputedStdError(), toText)}},
            {}};
}

/// The type of the test whose results there are: the run itself has the first.
MAConst::RegBaseTestType TypeOfTest(const AnalysisData& data)
{
    const bool isFromRun = !data.analysis.testStatus || data.analysis.HasFailedTest();
    return isFromRun ? MAConst::REG_TEST_EFFECT_ON_STD_ERROR : data.settings.GetRegBaseTestType();
}

/// The coefficient of the test's covariate, which is the last; missing of a test that failed.
std::vector<double> Slopes(const std::vector<std::vector<double>>& tests)
{
    std::vector<double> slopes;
    slopes.reserve(tests.size());
    for (const std::vector<double>& parameters : tests)
        slopes.push_back(parameters.empty() ? KXMV::Missing() : parameters.back());
    return slopes;
}

/// Of each group and of all studies when the test was asked for; the run tests the latter alone.
EffectRows SlopeRows(const MABaseModel& base)
{
    if (base.GetIfRegrTestPassFlag().empty())
        return {.ratios = {},
                .effects = {{base.GetRegBasedTestCoef()},
                            {base.GetRegBasedTestCILower()},
                            {base.GetRegBasedTestCIUpper()}},
                .stdErrors = {base.GetRegBasedTestStdError()},
                .statistics = {base.GetRegBasedTestVal()},
                .significances = {base.GeRegBasedTestSig()}};
    return {.ratios = {},
            .effects = {Slopes(base.GetRegrTestCoefficient()), Slopes(base.GetRegrBetaConfInterValLower()),
                        Slopes(base.GetRegrBetaConfInterValUpper())},
            .stdErrors = Slopes(base.GetRegrTestBetaStandErr()),
            .statistics = Slopes(base.GetRegrBetaTestVal()),
            .significances = Slopes(base.GetRegrBetaTestPValue())};
}

/// "= 0.0425" or "< 0.0001".
std::string EqualsText(double p)
{
    const std::string text = PValueText(p);
    return text.front() == '<' ? text : "= " + text;
}

/// The effect that the test is about, on the scale of its regression.
std::string EffectOfTest(const AnalysisData& data)
{
    switch (TypeOfTest(data)) {
    case MAConst::REG_TEST_SCORE_VARIANCE:
        return "log OR";
    case MAConst::REG_TEST_SCORE_CONTROL:
        return "log RR";
    default:
        return data.effect.AnalysisSymbol();
    }
}

/// What the slope of all studies means, without a claim about its cause.
Texts SlopeSentences(const AnalysisData& data)
{
    const double slope = data.base.GetRegBasedTestCoef();
    if (slope == 0)
        return {"The slope is zero."};
    const double p = data.base.GeRegBasedTestSig();
    const bool isRejected = p < 1 - data.settings.GetCILevel();
    const bool isOfSize = TypeOfTest(data) == MAConst::REG_TEST_EFFECT_ON_SIZE;
    Texts sentences = {
        fmt::format("The slope is {}: {} studies report {} values of {} (p {}).",
                    slope > 0 ? "positive" : "negative", isOfSize ? "smaller" : "less precise",
                    slope > 0 ? "larger" : "smaller", EffectOfTest(data), EqualsText(p)),
        fmt::format("At the {} level it {}.", data.level,
                    isRejected
                        ? "differs from zero; such a trend can have several causes, of which selective "
                          "publication is one"
                        : "does not differ clearly from zero, which is no proof that there is no trend")};
    if (!data.settings.GetIsUseIntercept())
        sentences.push_back(
            "Without intercept the line passes through the origin, so that its slope reflects the "
            "size of the effects as well.");
    return sentences;
}

ReportSection SlopeSection(const AnalysisData& data)
{
    const EffectRows rows = SlopeRows(data.base);

    ReportSection section = {fmt::format("Small-study test ({})", WordingOfTest(TypeOfTest(data))),
                             {{"", data.RowLabels(rows.effects.values.size()), true},
                              {data.IntervalHeader("Slope"), EstimateTexts(rows.effects)},
                              {"SE", TextsOf(rows.stdErrors, NumberText)},
                              {"t", TextsOf(rows.statistics, NumberText)},
                              {"p", TextsOf(rows.significances, PValueText)}},
                             SlopeSentences(data)};
    return section;
}

std::size_t CountOfValues(const std::vector<double>& values)
{
    return static_cast<std::size_t>(
        std::count_if(values.begin(), values.end(), [](double value) { return !KXMV::IsMissing(value); }));
}

} // namespace

ReportSection Contrasts(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const Texts labels = VariableLabels(data.settings.GetContrastCoefIndex(), data.request.variables);
    if (labels.empty())
        return {};
    EffectRows rows = {
        .ratios = {},
        .effects = {base.GetContrastEstES(), base.GetContrastEstCILower(), base.GetContrastEstCIUpper()},
        .stdErrors = base.GetContrastEstStdError(),
        .statistics = {},
        .significances = base.GetContrastEstSig()};
    if (data.binary)
        rows.ratios = {data.binary->GetContrastExpEstES(), data.binary->GetContrastExpEstCILower(),
                       data.binary->GetContrastExpEstCIUpper()};
    ReportSection section = {"Contrasts", {{"", labels, true}}, {}};
    AppendEffects(section.table, rows, {"exp(contrast)", "Contrast"}, data);
    section.sentences = ContrastSentences(labels, base.GetContrastStatus());
    return section;
}

std::vector<ReportSection> TrimAndFill(const AnalysisData& data)
{
    if (KXMV::IsMissing(data.base.GetOverallTFEffectSize()))
        return {};
    ReportSection section = {"Trim-and-fill", {{"", {"Observed studies", "With imputed studies"}, true}}, {}};
    AppendEffects(section.table, ObservedAndFilled(data), HeadersOf(data.effect), data);
    section.sentences = {ImputedSentence(data),
                         fmt::format("Trimmed under the {}.", WordingOfTrimmingModel(data.settings))};
    return {section, ImputedStudies(data)};
}

ReportSection SmallStudyTest(const AnalysisData& data)
{
    const bool isAskedFor = data.settings.GetIsTRIMFILL() || data.analysis.testStatus;
    if (!isAskedFor)
        return {};
    const bool hasSlope = !KXMV::IsMissing(data.base.GetRegBasedTestCoef());
    ReportSection section =
        hasSlope ? SlopeSection(data) : ReportSection{"Small-study test", {}, {"It could not be computed."}};
    if (data.analysis.HasFailedTest())
        section.sentences.push_back(
            fmt::format("The test asked for failed: {}", SentenceOf(data.analysis.testStatus->GetCode())));
    return section;
}

/// The library gives contours by their extent at one standard error, which makes a line over that axis alone.
ReportSection FunnelPlot(const AnalysisData& data)
{
    const bool wantsContours = data.settings.GetFunnelConTourTesType() != MAConst::CONTOUR_NONE;
    if (!wantsContours || data.settings.GetFunnelYType() == MAConst::FUNNEL_STD_ERROR)
        return {};
    return {
        "Funnel plot", {}, {"Its picture has no contours: they are drawn over the standard error alone."}};
}

/// The line of each; the points are for a plot.
ReportSection BubblePlots(const AnalysisData& data)
{
    const std::vector<std::vector<double>> lines = data.base.GetBubbleCoefs();
    if (lines.empty())
        return {};
    const std::vector<std::vector<double>> x = data.base.GetBubbleXs();
    Texts labels = VariableLabels(data.request.bubbleCovariates, data.request.variables);
    labels.resize(lines.size()); // an error ends the plots early
    Texts intercepts;
    Texts slopes;
    Texts counts;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool isFitted = !lines[i].empty();
        intercepts.push_back(isFitted ? NumberText(lines[i].front()) : NO_VALUE);
        slopes.push_back(isFitted ? NumberText(lines[i].back()) : NO_VALUE);
        counts.push_back(isFitted ? std::to_string(CountOfValues(x[i])) : NO_VALUE);
    }
    ReportSection section = {
        "Bubble plots",
        {{"Covariate", labels, true}, {"Studies", counts}, {"Intercept", intercepts}, {"Slope", slopes}},
        {}};
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].empty())
            section.sentences.push_back(labels[i] + ": no line can be fitted.");
    if (data.settings.GetCenterBubblePlot())
        section.sentences.push_back("The covariates are centred: an intercept is the effect at the mean.");
    return section;
}

} // namespace host
