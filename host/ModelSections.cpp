#include "host/ModelSections.h"

#include "host/ReportParts.h"
#include "host/ZeroCells.h"

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
EffectRows CumulativeRows(const ReportSource& source, const Pick& pick)
{
    const MABaseModel& base = source.base;
    EffectRows rows = {
        .ratios = {},
        .effects = {pick(base.GetCumEstES()), pick(base.GetCumEstCiLower()), pick(base.GetCumEstCiUpper())},
        .stdErrors = pick(base.GetCumEstStdErr()),
        .statistics = pick(base.GetCumEstZval()),
        .significances = pick(base.GetCumEstSig())};
    if (source.binary)
        rows.ratios = {pick(source.binary->GetCumExpEstES()), pick(source.binary->GetCumExpEstCiLower()),
                       pick(source.binary->GetCumExpEstCiUpper())};
    return rows;
}

EffectRows ModelRows(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    EffectRows rows = {.ratios = {},
                       .effects = {base.GetEstEffectSize(), base.GetEstCILower(), base.GetEstCIUpper()},
                       .stdErrors = base.GetEstStdError(),
                       .statistics = base.GetEstZVal(),
                       .significances = base.GetEstSig()};
    if (source.binary)
        rows.ratios = {source.binary->GetEstExpEffectSize(), source.binary->GetEstExpCILower(),
                       source.binary->GetEstExpCIUpper()};
    return rows;
}

/// The steps of one group, or of all studies.
ReportSection CumulativeSection(const ReportSource& source, std::size_t group)
{
    const ValueLabels& cumulative = source.request.cumulative;
    const std::vector<double> order = source.base.GetEstCumulative()[group];
    std::vector<std::string> values;
    values.reserve(order.size());
    for (const double value : order)
        values.push_back(LabelText(cumulative.LabelOf(value)));

    ReportSection section = {"Cumulative analysis", {}, {}};
    if (!source.groupLabels.empty())
        section.title +=
            fmt::format(": {} = {}", LabelText(source.request.subgroup.column), source.groupLabels[group]);
    section.table.push_back(
        {"Study added", source.StudyLabelsOf(source.base.GetSubGroupStudyID()[group]), true});
    section.table.push_back({LabelText(cumulative.column), values, !cumulative.texts.empty()});
    AppendEffects(section.table,
                  CumulativeRows(source, [group](const Rows& rows) { return RowAt(rows, group); }),
                  HeadersOf(source.effect), source);
    AppendCorrectionOfSteps(section.table, source, group);
    return section;
}

/// The estimates with their intervals, or alone where none has one.
ReportColumn EstimateColumn(const ReportSource& source, const std::string& symbol, const Estimates& estimates)
{
    if (!HasAnyValue(estimates.lower))
        return {symbol, TextsOf(estimates.values, NumberText)};
    return {source.IntervalHeader(symbol), EstimateTexts(estimates)};
}

ReportColumn I2Column(const ReportSource& source)
{
    constexpr int decimals = 2;
    const Estimates percent = {InPercent(source.base.GetI2Index()), InPercent(source.base.GetI2CILower()),
                               InPercent(source.base.GetI2CIUpper())};
    if (HasAnyValue(percent.lower))
        return {source.IntervalHeader("I² %"), EstimateTexts(percent, decimals)};
    return {"I² %", TextsOf(percent.values, [](double value) { return FixedText(value, decimals); })};
}

/// "Overall: " where there are several models.
std::string Opening(const std::vector<std::string>& labels, std::size_t model)
{
    return labels.size() > 1 ? labels[model] + ": " : "";
}

/// What a reader should know of the intervals of tau².
void AppendIntervalSentences(ReportSection& section, const ReportSource& source)
{
    const std::vector<double> upper = source.base.GetTau2CIUpper();
    const MAConst::TAU2INTERVAL method = source.settings.GetTau2Interval();
    if (!HasAnyValue(upper))
        return;
    section.sentences.push_back(fmt::format("The intervals of tau², tau, I² and H² are {} intervals.",
                                            WordingOfTau2Interval(method)));
    const std::vector<std::string> labels = source.RowLabels(upper.size());
    for (std::size_t i = 0; i < upper.size(); ++i)
        if (upper[i] == 0 && method == MAConst::TAU2_INTERVAL_Q_PROFILE)
            section.sentences.push_back(Opening(labels, i) + EMPTY_Q_PROFILE);
}

void AppendDoubtfulEnds(ReportSection& section, const ReportSource& source)
{
    const std::vector<double> convergence = source.base.GetTau2Convergence();
    const std::vector<std::string> labels = source.RowLabels(convergence.size());
    for (std::size_t i = 0; i < convergence.size(); ++i)
        if (const std::string doubt = WordingOfDoubtfulEnd(convergence[i]); !doubt.empty())
            section.sentences.push_back(Opening(labels, i) + doubt + '.');
}

std::string TitleOfPrediction(const ReportSource& source)
{
    const std::string rule = WordingOfPrediction(source.settings.GetPrediction());
    return source.level + " prediction interval" + (rule.empty() ? "" : ", " + rule);
}

/// The probability beyond the threshold that is asked for, if any.
void AppendProbability(ReportSection& section, const ReportSource& source)
{
    const double above = source.settings.GetProbabilityAbove();
    const double below = source.settings.GetProbabilityBelow();
    if (!HasAnyValue({above, below}))
        return;
    const bool isAbove = HasValue(above);
    const std::string symbol =
        fmt::format("P({} {} {})", source.effect.symbol, isAbove ? '>' : '<', isAbove ? above : below);
    section.table.push_back({symbol, TextsOf(source.base.GetPIProbability(), PValueText)});
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
std::vector<std::string> BetweenGroupsSentences(const ReportSource& source)
{
    const std::vector<int> sizes = source.base.GetGroupN();
    const bool hasSingle = std::find(sizes.begin(), sizes.end(), 1) != sizes.end();
    std::vector<std::string> sentences;
    if (hasSingle && source.settings.GetModelType() == MAConst::MODEL_RANDOM)
        sentences.push_back("A group of one study has no between-study variance of its own: it enters this "
                            "test with its within-study variance alone, and so with a large weight.");
    if (PoolsTables(source.settings))
        sentences.push_back("This test weighs the studies by the inverse of their variance, unlike the "
                            "pooled effects above, whose differences it need not match.");
    return sentences;
}

} // namespace

EffectRows PooledRows(const ReportSource& source)
{
    return source.base.GetCumEstES().empty() ? ModelRows(source) : CumulativeRows(source, LastSteps);
}

ReportSection PooledEffect(const ReportSource& source)
{
    const EffectRows rows = PooledRows(source);
    ReportSection section = {"Pooled effect", {{"", source.RowLabels(rows.effects.values.size()), true}}, {}};
    AppendEffects(section.table, rows, HeadersOf(source.effect), source);
    for (const std::string& sentence :
         {WordingOfNullHypothesis(source.settings), WordingOfPooledCorrection(source)})
        if (!sentence.empty())
            section.sentences.push_back(sentence);
    return section;
}

ReportSection PredictionInterval(const ReportSource& source)
{
    const Estimates effects = {{}, source.base.GetPILower(), source.base.GetPIUpper()};
    if (!HasAnyValue(effects.lower))
        return {};
    ReportSection section = {
        TitleOfPrediction(source), {{"", source.RowLabels(effects.lower.size()), true}}, {}};
    if (source.binary)
        section.table.push_back(
            {source.effect.symbol,
             EstimateTexts({{}, source.binary->GetExpPILower(), source.binary->GetExpPIUpper()})});
    section.table.push_back({source.effect.AnalysisSymbol(), EstimateTexts(effects, source.decimals)});
    AppendProbability(section, source);
    return section;
}

ReportSection Heterogeneity(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    const std::vector<double> q = base.GetHomoTestChisquareQ();
    const auto asCount = [](double value) { return FixedText(value, 0); };
    ReportSection section = {
        "Heterogeneity",
        {{"", source.RowLabels(q.size()), true},
         {"Q", TextsOf(q, NumberText)},
         {"df", TextsOf(base.GetHomoTestdf(), asCount)},
         {"p", TextsOf(base.GetHomoTestSig(), PValueText)},
         I2Column(source),
         EstimateColumn(source, "H²", {base.GetH2Index(), base.GetH2CILower(), base.GetH2CIUpper()})},
        {}};
    if (HasI2WithoutWidth(base))
        section.sentences.push_back(
            "An I² of 0 with the interval [0, 0] is no certainty: where Q is far below its degrees of "
            "freedom, the formula of the interval gives nothing else.");
    return section;
}

ReportSection BetweenStudyVariance(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    const Estimates tau2 = {base.GetTau2Var(), base.GetTau2CILower(), base.GetTau2CIUpper()};
    if (!HasAnyValue(tau2.values))
        return {};
    ReportSection section = {
        "Variance between studies", {{"", source.RowLabels(tau2.values.size()), true}}, {}};
    section.table.push_back(EstimateColumn(source, "tau²", tau2));
    section.table.push_back(EstimateColumn(
        source, "tau", {SquareRoots(tau2.values), SquareRoots(tau2.lower), SquareRoots(tau2.upper)}));
    if (HasAnyValue(base.GetLogLikelihood())) {
        section.table.push_back({"log-likelihood", TextsOf(base.GetLogLikelihood(), NumberText)});
        section.table.push_back({"AIC", TextsOf(base.GetAIC(), NumberText)});
    }
    AppendIntervalSentences(section, source);
    AppendDoubtfulEnds(section, source);
    return section;
}

ReportSection BetweenGroups(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    if (base.GetGDQbDf() == 0)
        return {};
    ReportSection section = {"Heterogeneity between the groups", {}, {}};
    section.table.push_back({"Q", {NumberText(base.GetGDQbVal())}});
    section.table.push_back({"df", {std::to_string(base.GetGDQbDf())}});
    section.table.push_back({"p", {PValueText(base.GetGDQbSig())}});
    section.sentences = BetweenGroupsSentences(source);
    return section;
}

std::vector<ReportSection> CumulativeAnalysis(const ReportSource& source)
{
    std::vector<ReportSection> sections;
    if (source.base.GetCumEstES().empty())
        return sections;
    // With groups there is a last row, of all studies, which has no steps.
    for (std::size_t group = 0; group < source.base.GetSubGroupStudyID().size(); ++group)
        sections.push_back(CumulativeSection(source, group));
    return sections;
}

} // namespace host
