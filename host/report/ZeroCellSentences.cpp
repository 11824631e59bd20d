#include "host/report/ZeroCellSentences.h"

#include "host/text/Wording.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::string CountOfTables(int count)
{
    return fmt::format("{} {}", count, count == 1 ? "table" : "tables");
}

/// Counts for each pooled effect. Those of a cumulative analysis are the counts of the last steps.
std::vector<int> CorrectedByRow(const MABinModel& model)
{
    std::vector<int> corrected;
    for (const std::vector<int>& steps : model.GetCumNPoolCorrected())
        corrected.push_back(steps.back());
    return corrected.empty() ? model.GetNPoolCorrected() : corrected;
}

/// Names the pooled effects with corrected tables, and how many they have.
std::string WordingOf(const std::vector<int>& corrected, const std::vector<std::string>& labels)
{
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < corrected.size(); ++row)
        if (corrected[row] > 0)
            rows.push_back(corrected.size() == 1
                               ? CountOfTables(corrected[row])
                               : fmt::format("{} in {}", CountOfTables(corrected[row]), labels[row]));
    if (rows.empty())
        return "no table";
    const char* const others =
        rows.size() < corrected.size() ? "; the other rows pool the counts as read" : "";
    return fmt::format("{}{}", fmt::join(rows, ", "), others);
}

/// Says which tables do not take part in the pooled effects, and whether an effect is undefined.
std::string WordingOfCountsAsRead(const MABinModel& model)
{
    std::string text;
    if (const int leftOut = model.GetNUninformative(); leftOut > 0)
        text += fmt::format(" Without information on the effect, and so without part in the pooled one: {}.",
                            CountOfTables(leftOut));
    const std::vector<double> pooled = model.GetEstEffectSize();
    if (std::any_of(pooled.begin(), pooled.end(), [](double effect) { return std::isnan(effect); }))
        text += " -: the counts have no pooled effect.";
    return text;
}

} // namespace

std::string WordingOfStudyCorrection(const AnalysisData& data)
{
    const MABinModel* const model = data.analysis.Binary();
    const int corrected = model == nullptr ? 0 : model->GetNZeroCorrected();
    if (corrected == 0)
        return {};
    return fmt::format("Zero-cell correction for the studies' own effects: {} added to all cells of {}.",
                       data.settings.GetZeroCountDelta(), CountOfTables(corrected));
}

std::string WordingOfPooledCorrection(const AnalysisData& data)
{
    const MABinModel* const model = data.analysis.Binary();
    if (!PoolsTables(data.settings) || model == nullptr || model->GetNZeroCorrected() == 0)
        return {};
    const std::vector<int> corrected = CorrectedByRow(*model);
    return fmt::format("Zero-cell correction of the counts pooled: {}.{}",
                       WordingOf(corrected, data.RowLabels(corrected.size())), WordingOfCountsAsRead(*model));
}

void AppendCorrectionOfSteps(std::vector<ReportColumn>& table, const AnalysisData& data, std::size_t group)
{
    const MABinModel* const model = data.analysis.Binary();
    if (model == nullptr)
        return;
    const std::vector<int> corrected = model->GetCumNPoolCorrected()[group];
    std::vector<std::string> texts;
    texts.reserve(corrected.size());
    for (const int count : corrected)
        texts.push_back(std::to_string(count));
    if (std::any_of(corrected.begin(), corrected.end(), [](int count) { return count > 0; }))
        table.push_back({"Tables corrected", texts});
}

} // namespace host
