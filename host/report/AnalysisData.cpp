#include "host/report/AnalysisData.h"

#include "host/report/ReportColumns.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

Measure MeasureOf(const AnalysisRequest& request)
{
    const Measure measure = host::MeasureOf(request.settings);
    return request.label ? measure.Labelled(LabelText(*request.label)) : measure;
}

/// The labels of two groups or more. The last value is OVERALL_GROUP, which also follows a single group when
/// studies are in none.
std::vector<std::string> GroupLabels(const ValueLabels& subgroup, std::vector<double> groups)
{
    std::vector<std::string> labels;
    if (groups.size() < 3)
        return labels;
    groups.pop_back();
    for (const double value : groups)
        labels.push_back(LabelText(subgroup.LabelOf(value)));
    return labels;
}

} // namespace

AnalysisData::AnalysisData(const AnalysisRequest& ofRequest, const Analysis& ofAnalysis)
    : AnalysisData(ofRequest, ofAnalysis, ofRequest.settings)
{}

AnalysisData::AnalysisData(const AnalysisRequest& ofRequest, const Analysis& ofAnalysis,
                           const MAModelSettings& ofSettings)
    : request(ofRequest),
      analysis(ofAnalysis),
      settings(ofSettings),
      base(analysis.Base()),
      measure(MeasureOf(request)),
      natural(NaturalResultsOf(analysis, measure)),
      level(WordingOfLevel(settings)),
      numbers(request.numbers),
      decimals(std::max(numbers.EffectDecimals(base.GetStdError()),
                        numbers.EffectDecimals(base.GetEstStdError()))),
      groupLabels(GroupLabels(request.subgroup, base.GetUniGroup()))
{}

std::vector<std::string> AnalysisData::RowLabels(std::size_t rowCount) const
{
    std::vector<std::string> labels = {OVERALL};
    if (rowCount > 1 && groupLabels.empty()) // of the studies in a cumulative analysis, and of all
        labels.insert(
            labels.begin(),
            "With " + (request.subgroup.column.empty() ? "" : LabelText(request.subgroup.column) + " and ") +
                LabelText(request.cumulative.column));
    else if (rowCount > 1)
        labels.insert(labels.begin(), groupLabels.begin(), groupLabels.end());
    return labels;
}

std::vector<std::string> AnalysisData::StudyLabelsOf(const std::vector<int>& records) const
{
    return LabelTexts(request.studyLabels, records);
}

std::vector<std::string> AnalysisData::VariableLabelsOf(const std::vector<int>& positions) const
{
    std::vector<std::string> labels;
    labels.reserve(positions.size());
    for (const int position : positions)
        labels.push_back(LabelText(request.variables.GetVarAt(position).name));
    return labels;
}

std::string AnalysisData::IntervalHeader(const std::string& symbol) const
{
    return host::IntervalHeader(symbol, level);
}

} // namespace host
