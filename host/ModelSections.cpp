#include "host/ModelSections.h"

#include "host/ReportParts.h"
#include "host/ZeroCells.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Rows = std::vector<std::vector<double>>;

std::vector<double> SquareRoots(std::vector<double> values)
{
    for (double& value : values)
        if (!KXMV::IsMissing(value))
            value = std::sqrt(value);
    return values;
}

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
        source.level + " prediction interval", {{"", source.RowLabels(effects.lower.size()), true}}, {}};
    if (source.binary)
        section.table.push_back(
            {source.effect.symbol,
             EstimateTexts({{}, source.binary->GetExpPILower(), source.binary->GetExpPIUpper()})});
    section.table.push_back({source.effect.AnalysisSymbol(), EstimateTexts(effects, source.decimals)});
    return section;
}

ReportSection Heterogeneity(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    const std::vector<double> q = base.GetHomoTestChisquareQ();
    ReportSection section = {"Heterogeneity", {{"", source.RowLabels(q.size()), true}}, {}};
    const auto asCount = [](double value) { return FixedText(value, 0); };
    const auto asPercent = [](double value) { return FixedText(value, 2); };
    section.table.push_back({"Q", TextsOf(q, NumberText)});
    section.table.push_back({"df", TextsOf(base.GetHomoTestdf(), asCount)});
    section.table.push_back({"p", TextsOf(base.GetHomoTestSig(), PValueText)});
    if (HasAnyValue(base.GetTau2Var())) {
        section.table.push_back({"tau²", TextsOf(base.GetTau2Var(), NumberText)});
        section.table.push_back({"tau", TextsOf(SquareRoots(base.GetTau2Var()), NumberText)});
    }
    if (HasAnyValue(base.GetI2CILower())) {
        section.table.push_back({source.IntervalHeader("I² %"),
                                 EstimateTexts({InPercent(base.GetI2Index()), InPercent(base.GetI2CILower()),
                                                InPercent(base.GetI2CIUpper())},
                                               2)});
        section.table.push_back(
            {source.IntervalHeader("H²"),
             EstimateTexts({base.GetH2Index(), base.GetH2CILower(), base.GetH2CIUpper()})});
    } else {
        section.table.push_back({"I² %", TextsOf(InPercent(base.GetI2Index()), asPercent)});
        section.table.push_back({"H²", TextsOf(base.GetH2Index(), NumberText)});
    }
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
