#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/SmallStudyTests.h"
#include "host/text/StatusText.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Texts = std::vector<std::string>;

/// The type of the test whose results are shown. The run itself always tests by the first type.
MAConst::RegBaseTestType TypeOfTest(const AnalysisData& data)
{
    const bool isFromRun = !data.analysis.testStatus || data.analysis.HasFailedTest();
    return isFromRun ? MAConst::REG_TEST_EFFECT_ON_STD_ERROR : data.settings.GetRegBaseTestType();
}

/// The last coefficient of each test, which is that of its covariate; missing when the test failed.
std::vector<double> Slopes(const std::vector<std::vector<double>>& tests)
{
    std::vector<double> slopes;
    slopes.reserve(tests.size());
    for (const std::vector<double>& parameters : tests)
        slopes.push_back(parameters.empty() ? KXMV::Missing() : parameters.back());
    return slopes;
}

/// The slopes of each group and of all studies when the test was asked for, else that of all studies.
EffectRows SlopeRows(const MABaseModel& base)
{
    if (base.GetIfRegrTestPassFlag().empty())
        return {.effects = {{base.GetRegBasedTestCoef()},
                            {base.GetRegBasedTestCILower()},
                            {base.GetRegBasedTestCIUpper()}},
                .stdErrors = {base.GetRegBasedTestStdError()},
                .statistics = {base.GetRegBasedTestVal()},
                .significances = {base.GeRegBasedTestSig()}};
    return {.effects = {Slopes(base.GetRegrTestCoefficient()), Slopes(base.GetRegrBetaConfInterValLower()),
                        Slopes(base.GetRegrBetaConfInterValUpper())},
            .stdErrors = Slopes(base.GetRegrTestBetaStandErr()),
            .statistics = Slopes(base.GetRegrBetaTestVal()),
            .significances = Slopes(base.GetRegrBetaTestPValue())};
}

/// The symbol of the effect that the test regresses, on the scale of its regression.
std::string EffectOfTest(const AnalysisData& data)
{
    switch (TypeOfTest(data)) {
    case MAConst::REG_TEST_SCORE_VARIANCE:
        return MeasureOf(MAConst::BIN_ODDS_RATIO).AnalysisSymbol();
    case MAConst::REG_TEST_SCORE_CONTROL:
        return MeasureOf(MAConst::BIN_RISK_RATIO).AnalysisSymbol();
    case MAConst::REG_TEST_EFFECT_ON_STD_ERROR:
    case MAConst::REG_TEST_EFFECT_ON_SIZE:
        return data.measure.AnalysisSymbol();
    }
    return {};
}

/// Explains the slope of all studies, without a claim about its cause.
Texts SlopeSentences(const AnalysisData& data)
{
    const double slope = data.base.GetRegBasedTestCoef();
    if (slope == 0)
        return {"The slope is zero."};
    const double p = data.base.GeRegBasedTestSig();
    const bool isRejected = p < AlphaOf(data.settings);
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

    ReportSection section = {
        fmt::format("Small-study test ({})", RowOf(SMALL_STUDY_TESTS, TypeOfTest(data)).description),
        {{"", data.RowLabels(rows.effects.values.size()), true},
         {data.IntervalHeader("Slope"), EstimateTexts(rows.effects, data.numbers)},
         {"SE", TextsOf(rows.stdErrors, data.numbers)},
         {"t", TextsOf(rows.statistics, data.numbers)},
         {"p", TextsOf(rows.significances, PValueText)}},
        SlopeSentences(data)};
    return section;
}

/// The effect that the regression line predicts for a study without sampling error.
ReportSections LimitSection(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    if (KXMV::IsMissing(base.GetRegBasedTestLimit()))
        return {};
    EffectRows rows = {.effects = {{base.GetRegBasedTestLimit()},
                                   {base.GetRegBasedTestLimitCILower()},
                                   {base.GetRegBasedTestLimitCIUpper()}}};
    if (data.measure.isRatio)
        rows.naturals = {Exponentials(rows.effects.values), Exponentials(rows.effects.lower),
                         Exponentials(rows.effects.upper)};
    ReportSection section = {"Effect at standard error 0", {}, {}};
    AppendEffects(section.table, rows, HeadersOf(data.measure), data);
    section.sentences = {"The intercept of that regression: the effect in a study without sampling error, if "
                         "the trend goes on to there."};
    return {section};
}

} // namespace

ReportSections SmallStudyTestSection(const AnalysisData& data)
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
    ReportSections sections = {section};
    Append(sections, LimitSection(data));
    return sections;
}

} // namespace host
