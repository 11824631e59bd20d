#include "host/report/ZeroCellSentences.h"

#include "host/text/Wording.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <type_traits>
#include <variant>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// How a driver of counts corrected zeros.
struct Corrections
{
    const char* noun;  ///< of what is corrected
    const char* cells; ///< what of it receives the constant
    int ofEffects;
    std::vector<int> byModel;
    std::vector<std::vector<int>> bySteps;
    int uninformative;
};

std::optional<Corrections> CorrectionsOf(const Analysis& analysis)
{
    return std::visit(
        [](const auto& model) -> std::optional<Corrections> {
            if constexpr (requires { model.GetNZeroCorrected(); }) {
                const bool areTables = std::is_same_v<decltype(model), const MABinModel&>;
                return Corrections{areTables ? "table" : "study", areTables ? "cells" : "counts",
                                   model.GetNZeroCorrected(),     model.GetNPoolCorrected(),
                                   model.GetCumNPoolCorrected(),  model.GetNUninformative()};
            }
            return {};
        },
        analysis.model);
}

/// "2 tables", "1 study".
std::string CountOf(int count, const Corrections& of)
{
    const std::string noun = of.noun;
    return fmt::format("{} {}", count, count == 1 ? noun : noun == "study" ? "studies" : noun + "s");
}

/// Counts for each pooled effect. Those of a cumulative analysis are the counts of the last steps.
std::vector<int> CorrectedByRow(const Corrections& corrections)
{
    std::vector<int> corrected;
    for (const std::vector<int>& steps : corrections.bySteps)
        corrected.push_back(steps.back());
    return corrected.empty() ? corrections.byModel : corrected;
}

/// Names the pooled effects with corrected tables, and how many they have.
std::string WordingOf(const Corrections& corrections, const std::vector<std::string>& labels)
{
    const std::vector<int> corrected = CorrectedByRow(corrections);
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < corrected.size(); ++row)
        if (corrected[row] > 0)
            rows.push_back(corrected.size() == 1
                               ? CountOf(corrected[row], corrections)
                               : fmt::format("{} in {}", CountOf(corrected[row], corrections), labels[row]));
    if (rows.empty())
        return fmt::format("no {}", corrections.noun);
    const char* const others =
        rows.size() < corrected.size() ? "; the other rows pool the counts as read" : "";
    return fmt::format("{}{}", fmt::join(rows, ", "), others);
}

/// Says which tables do not take part in the pooled effects, and whether an effect is undefined.
std::string WordingOfCountsAsRead(const Corrections& corrections, const std::vector<double>& pooled)
{
    std::string text;
    if (const int leftOut = corrections.uninformative; leftOut > 0)
        text += fmt::format(" Without information on the effect, and so without part in the pooled one: {}.",
                            CountOf(leftOut, corrections));
    if (std::any_of(pooled.begin(), pooled.end(), [](double effect) { return std::isnan(effect); }))
        text += " -: the counts have no pooled effect.";
    return text;
}

} // namespace

int CorrectedStudies(const AnalysisData& data)
{
    const std::optional<Corrections> corrections = CorrectionsOf(data.analysis);
    return corrections ? corrections->ofEffects : 0;
}

std::string WordingOfStudyCorrection(const AnalysisData& data)
{
    const std::optional<Corrections> corrections = CorrectionsOf(data.analysis);
    if (!corrections || corrections->ofEffects == 0)
        return {};
    return fmt::format("Zero-cell correction for the studies' own effects: {} added to all {} of {}.",
                       data.settings.GetZeroCountDelta(), corrections->cells,
                       CountOf(corrections->ofEffects, *corrections));
}

std::string WordingOfPooledCorrection(const AnalysisData& data)
{
    const std::optional<Corrections> corrections = CorrectionsOf(data.analysis);
    if (!PoolsTables(data.settings) || !corrections || corrections->ofEffects == 0)
        return {};
    const std::size_t rowCount = CorrectedByRow(*corrections).size();
    return fmt::format("Zero-cell correction of the counts pooled: {}.{}",
                       WordingOf(*corrections, data.RowLabels(rowCount)),
                       WordingOfCountsAsRead(*corrections, data.base.GetEstEffectSize()));
}

std::vector<ReportColumn> CorrectionsOfSteps(const AnalysisData& data)
{
    const std::optional<Corrections> corrections = CorrectionsOf(data.analysis);
    std::vector<ReportColumn> columns;
    if (!corrections)
        return columns;
    const std::string header = fmt::format("{} corrected", Capitalised(CountOf(0, *corrections).substr(2)));
    for (const std::vector<int>& corrected : corrections->bySteps) {
        columns.push_back({header, {}});
        if (std::any_of(corrected.begin(), corrected.end(), [](int count) { return count > 0; }))
            for (const int count : corrected)
                columns.back().cells.push_back(std::to_string(count));
    }
    return columns;
}

} // namespace host
