#include "host/FurtherSections.h"

#include "host/Choices.h"
#include "host/ModelSections.h"
#include "host/ReportParts.h"
#include "host/StatusText.h"

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

std::string ImputedSentence(const ReportSource& source)
{
    const bool isLargest = source.analysis.trimmedSide == MAConst::TRIM_SIDE_LARGEST;
    const bool isChosen = source.settings.GetTrimFillSide() == MAConst::TRIM_SIDE_AUTO;
    return fmt::format("Studies imputed by the {} estimator, as mirror images of the {} effects{}: {}.",
                       NameOf(TRIM_FILL_CHOICES, source.settings.GetTrimFillMethod()),
                       isLargest ? "largest" : "smallest",
                       isChosen ? " (the side that the data suggest)" : "", source.base.GetTFImputedN0());
}

/// The model of all studies, then the one that has the imputed studies too.
EffectRows ObservedAndFilled(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    const EffectRows pooled = PooledRows(source);
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
    if (source.binary)
        rows.ratios = {both(pooled.ratios.values, source.binary->GetOverallTFExpEffectSize()),
                       both(pooled.ratios.lower, source.binary->GetOverallTFExpCILower()),
                       both(pooled.ratios.upper, source.binary->GetOverallTFExpCIUpper())};
    return rows;
}

ReportSection ImputedStudies(const ReportSource& source)
{
    const std::vector<double> effects = source.base.GetTFImputedEffectSize();
    if (effects.empty())
        return {};
    Texts numbers;
    numbers.reserve(effects.size());
    for (std::size_t i = 1; i <= effects.size(); ++i)
        numbers.push_back(std::to_string(i));
    const auto toText = [&](double value) { return source.EffectText(value); };
    return {"Imputed studies",
            {{"", numbers},
             {source.effect.AnalysisSymbol(), TextsOf(effects, toText)},
             {"SE", TextsOf(source.base.GetTFImputedStdError(), toText)}},
            {}};
}

/// The type of the test whose results there are: the run itself has the first.
MAConst::RegBaseTestType TypeOfTest(const ReportSource& source)
{
    const bool isFromRun = !source.analysis.testStatus || source.analysis.HasFailedTest();
    return isFromRun ? MAConst::REG_TEST_EFFECT_ON_STD_ERROR : source.settings.GetRegBaseTestType();
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
std::string EffectOfTest(const ReportSource& source)
{
    switch (TypeOfTest(source)) {
    case MAConst::REG_TEST_SCORE_VARIANCE:
        return "log OR";
    case MAConst::REG_TEST_SCORE_CONTROL:
        return "log RR";
    default:
        return source.effect.AnalysisSymbol();
    }
}

/// What the slope of all studies means, without a claim about its cause.
Texts SlopeSentences(const ReportSource& source)
{
    const double slope = source.base.GetRegBasedTestCoef();
    if (slope == 0)
        return {"The slope is zero."};
    const double p = source.base.GeRegBasedTestSig();
    const bool isRejected = p < 1 - source.settings.GetCILevel();
    const bool isOfSize = TypeOfTest(source) == MAConst::REG_TEST_EFFECT_ON_SIZE;
    Texts sentences = {
        fmt::format("The slope is {}: {} studies report {} values of {} (p {}).",
                    slope > 0 ? "positive" : "negative", isOfSize ? "smaller" : "less precise",
                    slope > 0 ? "larger" : "smaller", EffectOfTest(source), EqualsText(p)),
        fmt::format("At the {} level it {}.", source.level,
                    isRejected
                        ? "differs from zero; such a trend can have several causes, of which selective "
                          "publication is one"
                        : "does not differ clearly from zero, which is no proof that there is no trend")};
    if (!source.settings.GetIsUseIntercept())
        sentences.push_back(
            "Without intercept the line passes through the origin, so that its slope reflects the "
            "size of the effects as well.");
    return sentences;
}

ReportSection SlopeSection(const ReportSource& source)
{
    const EffectRows rows = SlopeRows(source.base);

    ReportSection section = {fmt::format("Small-study test ({})", WordingOfTest(TypeOfTest(source))),
                             {{"", source.RowLabels(rows.effects.values.size()), true},
                              {source.IntervalHeader("Slope"), EstimateTexts(rows.effects)},
                              {"SE", TextsOf(rows.stdErrors, NumberText)},
                              {"t", TextsOf(rows.statistics, NumberText)},
                              {"p", TextsOf(rows.significances, PValueText)}},
                             SlopeSentences(source)};
    return section;
}

std::size_t CountOfValues(const std::vector<double>& values)
{
    return static_cast<std::size_t>(
        std::count_if(values.begin(), values.end(), [](double value) { return !KXMV::IsMissing(value); }));
}

} // namespace

ReportSection Contrasts(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    const Texts labels = VariableLabels(source.settings.GetContrastCoefIndex(), source.request.variables);
    if (labels.empty())
        return {};
    EffectRows rows = {
        .ratios = {},
        .effects = {base.GetContrastEstES(), base.GetContrastEstCILower(), base.GetContrastEstCIUpper()},
        .stdErrors = base.GetContrastEstStdError(),
        .statistics = {},
        .significances = base.GetContrastEstSig()};
    if (source.binary)
        rows.ratios = {source.binary->GetContrastExpEstES(), source.binary->GetContrastExpEstCILower(),
                       source.binary->GetContrastExpEstCIUpper()};
    ReportSection section = {"Contrasts", {{"", labels, true}}, {}};
    AppendEffects(section.table, rows, {"exp(contrast)", "Contrast"}, source);
    section.sentences = ContrastSentences(labels, base.GetContrastStatus());
    return section;
}

std::vector<ReportSection> TrimAndFill(const ReportSource& source)
{
    if (KXMV::IsMissing(source.base.GetOverallTFEffectSize()))
        return {};
    ReportSection section = {"Trim-and-fill", {{"", {"Observed studies", "With imputed studies"}, true}}, {}};
    AppendEffects(section.table, ObservedAndFilled(source), HeadersOf(source.effect), source);
    section.sentences = {ImputedSentence(source),
                         fmt::format("Trimmed under the {}.", WordingOfTrimmingModel(source.settings))};
    return {section, ImputedStudies(source)};
}

ReportSection SmallStudyTest(const ReportSource& source)
{
    const bool isAskedFor = source.settings.GetIsTRIMFILL() || source.analysis.testStatus;
    if (!isAskedFor)
        return {};
    const bool hasSlope = !KXMV::IsMissing(source.base.GetRegBasedTestCoef());
    ReportSection section = hasSlope ? SlopeSection(source)
                                     : ReportSection{"Small-study test", {}, {"It could not be computed."}};
    if (source.analysis.HasFailedTest())
        section.sentences.push_back(
            fmt::format("The test asked for failed: {}", SentenceOf(source.analysis.testStatus->GetCode())));
    return section;
}

/// The library gives contours by their extent at one standard error, which makes a line over that axis alone.
ReportSection FunnelPlot(const ReportSource& source)
{
    const bool wantsContours = source.settings.GetFunnelConTourTesType() != MAConst::CONTOUR_NONE;
    if (!wantsContours || source.settings.GetFunnelYType() == MAConst::FUNNEL_STD_ERROR)
        return {};
    return {
        "Funnel plot", {}, {"Its picture has no contours: they are drawn over the standard error alone."}};
}

/// The line of each; the points are for a plot.
ReportSection BubblePlots(const ReportSource& source)
{
    const std::vector<std::vector<double>> lines = source.base.GetBubbleCoefs();
    if (lines.empty())
        return {};
    const std::vector<std::vector<double>> x = source.base.GetBubbleXs();
    Texts labels = VariableLabels(source.request.bubbleCovariates, source.request.variables);
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
    if (source.settings.GetCenterBubblePlot())
        section.sentences.push_back("The covariates are centred: an intercept is the effect at the mean.");
    return section;
}

} // namespace host
