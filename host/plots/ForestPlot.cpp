#include "host/plots/ForestDrawing.h"
#include "host/plots/PictureMakers.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Kind = ForestRow::Kind;

/// The model and its heterogeneity.
std::vector<std::string> Notes(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    std::vector<std::string> notes = {Capitalised(WordingOfModel(data.settings))};
    if (!HasAnyValue(base.GetHomoTestChisquareQ()))
        return notes;
    std::string note = fmt::format(
        "Heterogeneity: Q {}, df {}, p {}, I² {}", FixedText(base.GetHomoTestChisquareQ().back(), 2),
        FixedText(base.GetHomoTestdf().back(), 0), PValueText(base.GetHomoTestSig().back()),
        PercentText(base.GetI2Index().back(), 1));
    if (const std::vector<double> tau2 = base.GetTau2Var(); HasAnyValue(tau2))
        note += fmt::format(", tau² {}", NumberText(tau2.back()));
    notes.push_back(std::move(note));
    return notes;
}

std::string CountOfStudyRows(const std::vector<ForestRow>& rows)
{
    const auto count =
        std::count_if(rows.begin(), rows.end(), [](const ForestRow& row) { return row.kind == Kind::STUDY; });
    return CountOfStudies(static_cast<std::size_t>(count));
}

Forest WeightedForest(const AnalysisData& data)
{
    Forest forest = {.name = "forest",
                     .title = "Forest plot",
                     .description = {},
                     .remarkHeader = {},
                     .hasWeights = true,
                     .rows = ForestRows(data),
                     .notes = Notes(data)};
    forest.description =
        fmt::format("{}: {} of {} with {} intervals, squares by weight, and the pooled effects as diamonds.",
                    forest.title, data.measure.name, CountOfStudyRows(forest.rows), data.level);
    return forest;
}

Forest CumulativeForest(const AnalysisData& data)
{
    Forest forest = {.name = "cumulative-forest",
                     .title = "Cumulative forest plot",
                     .description = {},
                     .remarkHeader = LabelText(data.request.cumulative.column),
                     .hasWeights = false,
                     .rows = CumulativeForestRows(data),
                     .notes = {Capitalised(WordingOfModel(data.settings))}};
    forest.description =
        fmt::format("{}: the pooled {} with its {} interval after each of {}, in order of {}.", forest.title,
                    data.measure.name, data.level, CountOfStudyRows(forest.rows), forest.remarkHeader);
    return forest;
}

} // namespace

std::vector<Picture> ForestPictures(const AnalysisData& data)
{
    std::vector<Picture> pictures = {DrawForest(data, WeightedForest(data))};
    if (const Forest forest = CumulativeForest(data); !forest.rows.empty())
        pictures.push_back(DrawForest(data, forest));
    return pictures;
}

} // namespace host
