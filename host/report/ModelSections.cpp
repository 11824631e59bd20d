#include "host/report/ModelSections.h"

#include "host/report/ReportParts.h"
#include "host/report/ZeroCellSentences.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Rows = std::vector<std::vector<double>>;

/// The last step of each row, with which all its studies are in.
std::vector<double> LastSteps(const Rows& rows)
{
    std::vector<double> last;
    for (const std::vector<double>& row : rows)
        last.push_back(row.back());
    return last;
}

std::vector<double> RowAt(const Rows& rows, std::size_t row)
{
    return row < rows.size() ? rows[row] : std::vector<double>();
}

/// What `pick` makes of each part of the cumulative results.
template <class Pick>
EffectRows CumulativeRows(const AnalysisData& data, const Pick& pick)
{
    const MABaseModel& base = data.base;
    EffectRows rows = {
        .ratios = {},
        .effects = {pick(base.GetCumEstES()), pick(base.GetCumEstCiLower()), pick(base.GetCumEstCiUpper())},
        .stdErrors = pick(base.GetCumEstStdErr()),
        .statistics = pick(base.GetCumEstZval()),
        .significances = pick(base.GetCumEstSig())};
    if (data.binary)
        rows.ratios = {pick(data.binary->GetCumExpEstES()), pick(data.binary->GetCumExpEstCiLower()),
                       pick(data.binary->GetCumExpEstCiUpper())};
    return rows;
}

EffectRows ModelRows(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    EffectRows rows = {.ratios = {},
                       .effects = {base.GetEstEffectSize(), base.GetEstCILower(), base.GetEstCIUpper()},
                       .stdErrors = base.GetEstStdError(),
                       .statistics = base.GetEstZVal(),
                       .significances = base.GetEstSig()};
    if (data.binary)
        rows.ratios = {data.binary->GetEstExpEffectSize(), data.binary->GetEstExpCILower(),
                       data.binary->GetEstExpCIUpper()};
    return rows;
}

/// The steps of one group, or of all studies.
ReportSection CumulativeSection(const AnalysisData& data, std::size_t group)
{
    const ValueLabels& cumulative = data.request.cumulative;
    const std::vector<double> order = data.base.GetEstCumulative()[group];
    std::vector<std::string> values;
    values.reserve(order.size());
    for (const double value : order)
        values.push_back(LabelText(cumulative.LabelOf(value)));

    ReportSection section = {"Cumulative analysis", {}, {}};
    if (!data.groupLabels.empty())
        section.title +=
            fmt::format(": {} = {}", LabelText(data.request.subgroup.column), data.groupLabels[group]);
    section.table.push_back({"Study added", data.StudyLabelsOf(data.base.GetSubGroupStudyID()[group]), true});
    section.table.push_back({LabelText(cumulative.column), values, !cumulative.texts.empty()});
    AppendEffects(section.table,
                  CumulativeRows(data, [group](const Rows& rows) { return RowAt(rows, group); }),
                  HeadersOf(data.effect), data);
    AppendCorrectionOfSteps(section.table, data, group);
    return section;
}

/// The estimates with their intervals, or alone where none has one.
ReportColumn EstimateColumn(const AnalysisData& data, const std::string& symbol, const Estimates& estimates)
{
    if (!HasAnyValue(estimates.lower))
        return {symbol, TextsOf(estimates.values, NumberText)};
    return {data.IntervalHeader(symbol), EstimateTexts(estimates)};
}

ReportColumn I2Column(const AnalysisData& data)
{
    constexpr int decimals = 2;
    const Estimates percent = {InPercent(data.base.GetI2Index()), InPercent(data.base.GetI2CILower()),
                               InPercent(data.base.GetI2CIUpper())};
    if (HasAnyValue(percent.lower))
        return {data.IntervalHeader("I² %"), EstimateTexts(percent, decimals)};
    return {"I² %", TextsOf(percent.values, [](double value) { return FixedText(value, decimals); })};
}

/// "Overall: " where there are several models.
std::string Opening(const std::vector<std::string>& labels, std::size_t model)
{
    return labels.size() > 1 ? labels[model] + ": " : "";
}

/// What a reader should know of the intervals of tau².
void AppendIntervalSentences(ReportSection& section, const AnalysisData& data)
{
    const std::vector<double> upper = data.base.GetTau2CIUpper();
    const MAConst::TAU2INTERVAL method = data.settings.GetTau2Interval();
    if (!HasAnyValue(upper))
        return;
    section.sentences.push_back(fmt::format("The intervals of tau², tau, I² and H² are {} intervals.",
                                            WordingOfTau2Interval(method)));
    const std::vector<std::string> labels = data.RowLabels(upper.size());
    for (std::size_t i = 0; i < upper.size(); ++i)
        if (upper[i] == 0 && method == MAConst::TAU2_INTERVAL_Q_PROFILE)
            section.sentences.push_back(Opening(labels, i) + EMPTY_Q_PROFILE);
}

void AppendDoubtfulEnds(ReportSection& section, const AnalysisData& data)
{
    const std::vector<double> convergence = data.base.GetTau2Convergence();
    const std::vector<std::string> labels = data.RowLabels(convergence.size());
    for (std::size_t i = 0; i < convergence.size(); ++i)
        if (const std::string doubt = WordingOfDoubtfulEnd(convergence[i]); !doubt.empty())
            section.sentences.push_back(Opening(labels, i) + doubt + '.');
}

std::string TitleOfPrediction(const AnalysisData& data)
{
    const std::string rule = WordingOfPrediction(data.settings.GetPrediction());
    return data.level + " prediction interval" + (rule.empty() ? "" : ", " + rule);
}

/// The probability beyond the threshold that is asked for, if any.
void AppendProbability(ReportSection& section, const AnalysisData& data)
{
    const double above = data.settings.GetProbabilityAbove();
    const double below = data.settings.GetProbabilityBelow();
    if (!HasAnyValue({above, below}))
        return;
    const bool isAbove = HasValue(above);
    const std::string symbol =
        fmt::format("P({} {} {})", data.effect.symbol, isAbove ? '>' : '<', isAbove ? above : below);
    section.table.push_back({symbol, TextsOf(data.base.GetPIProbability(), PValueText)});
    section.sentences.push_back(symbol + ": probability that the true effect of a new study is " +
                                (isAbove ? "above" : "below") + " that value.");
}

/// The interval that fixed-effect models take from Q alone, where Q is far below its degrees of freedom.
bool HasI2WithoutWidth(const MABaseModel& base)
{
    const std::vector<double> upper = base.GetI2CIUpper();
    return base.GetModelType() == MAConst::MODEL_FIXED &&
           std::find(upper.begin(), upper.end(), 0.0) != upper.end();
}

/// Where the test between the groups has other weights than one would think.
std::vector<std::string> BetweenGroupsSentences(const AnalysisData& data)
{
    const std::vector<int> sizes = data.base.GetGroupN();
    const bool hasSingle = std::find(sizes.begin(), sizes.end(), 1) != sizes.end();
    std::vector<std::string> sentences;
    if (hasSingle && data.settings.GetModelType() == MAConst::MODEL_RANDOM)
        sentences.push_back("A group of one study has no between-study variance of its own: it enters this "
                            "test with its within-study variance alone, and so with a large weight.");
    if (PoolsTables(data.settings))
        sentences.push_back("This test weighs the studies by the inverse of their variance, unlike the "
                            "pooled effects above, whose differences it need not match.");
    return sentences;
}

} // namespace

EffectRows PooledRows(const AnalysisData& data)
{
    return data.base.GetCumEstES().empty() ? ModelRows(data) : CumulativeRows(data, LastSteps);
}

ReportSection PooledEffect(const AnalysisData& data)
{
    const EffectRows rows = PooledRows(data);
    ReportSection section = {"Pooled effect", {{"", data.RowLabels(rows.effects.values.size()), true}}, {}};
    AppendEffects(section.table, rows, HeadersOf(data.effect), data);
    for (const std::string& sentence :
         {WordingOfNullHypothesis(data.settings), WordingOfPooledCorrection(data)})
        if (!sentence.empty())
            section.sentences.push_back(sentence);
    return section;
}

ReportSection PredictionInterval(const AnalysisData& data)
{
    const Estimates effects = {{}, data.base.GetPILower(), data.base.GetPIUpper()};
    if (!HasAnyValue(effects.lower))
        return {};
    ReportSection section = {TitleOfPrediction(data), {{"", data.RowLabels(effects.lower.size()), true}}, {}};
    if (data.binary)
        section.table.push_back(
            {data.effect.symbol,
             EstimateTexts({{}, data.binary->GetExpPILower(), data.binary->GetExpPIUpper()})});
    section.table.push_back({data.effect.AnalysisSymbol(), EstimateTexts(effects, data.decimals)});
    AppendProbability(section, data);
    return section;
}

ReportSection Heterogeneity(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const std::vector<double> q = base.GetHomoTestChisquareQ();
    const auto asCount = [](double value) { return FixedText(value, 0); };
    ReportSection section = {
        "Heterogeneity",
        {{"", data.RowLabels(q.size()), true},
         {"Q", TextsOf(q, NumberText)},
         {"df", TextsOf(base.GetHomoTestdf(), asCount)},
         {"p", TextsOf(base.GetHomoTestSig(), PValueText)},
         I2Column(data),
         EstimateColumn(data, "H²", {base.GetH2Index(), base.GetH2CILower(), base.GetH2CIUpper()})},
        {}};
    if (HasI2WithoutWidth(base))
        section.sentences.push_back(
            "An I² of 0 with the interval [0, 0] is no certainty: where Q is far below its degrees of "
            "freedom, the formula of the interval gives nothing else.");
    return section;
}

ReportSection BetweenStudyVariance(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const Estimates tau2 = {base.GetTau2Var(), base.GetTau2CILower(), base.GetTau2CIUpper()};
    if (!HasAnyValue(tau2.values))
        return {};
    ReportSection section = {
        "Variance between studies", {{"", data.RowLabels(tau2.values.size()), true}}, {}};
    section.table.push_back(EstimateColumn(data, "tau²", tau2));
    section.table.push_back(EstimateColumn(
        data, "tau", {SquareRoots(tau2.values), SquareRoots(tau2.lower), SquareRoots(tau2.upper)}));
    if (HasAnyValue(base.GetLogLikelihood())) {
        section.table.push_back({"log-likelihood", TextsOf(base.GetLogLikelihood(), NumberText)});
        section.table.push_back({"AIC", TextsOf(base.GetAIC(), NumberText)});
    }
    AppendIntervalSentences(section, data);
    AppendDoubtfulEnds(section, data);
    return section;
}

ReportSection BetweenGroups(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    if (base.GetGDQbDf() == 0)
        return {};
    ReportSection section = {"Heterogeneity between the groups", {}, {}};
    section.table.push_back({"Q", {NumberText(base.GetGDQbVal())}});
    section.table.push_back({"df", {std::to_string(base.GetGDQbDf())}});
    section.table.push_back({"p", {PValueText(base.GetGDQbSig())}});
    section.sentences = BetweenGroupsSentences(data);
    return section;
}

std::vector<ReportSection> CumulativeAnalysis(const AnalysisData& data)
{
    std::vector<ReportSection> sections;
    if (data.base.GetCumEstES().empty())
        return sections;
    // With groups there is a last row, of all studies, which has no steps.
    for (std::size_t group = 0; group < data.base.GetSubGroupStudyID().size(); ++group)
        sections.push_back(CumulativeSection(data, group));
    return sections;
}

} // namespace host
