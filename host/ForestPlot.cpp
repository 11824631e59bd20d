#include "host/ForestPlot.h"

#include "host/ForestDrawing.h"
#include "host/ReportParts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Kind = ForestRow::Kind;

/// The model, and how much the studies differ under it.
std::vector<std::string> Notes(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    std::vector<std::string> notes = {Capitalised(WordingOfModel(source.settings))};
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

Forest WeightedForest(const ReportSource& source)
{
    Forest forest = {.name = "forest",
                     .title = "Forest plot",
                     .description = {},
                     .remarkHeader = {},
                     .hasWeights = true,
                     .rows = ForestRows(source),
                     .notes = Notes(source)};
    forest.description =
        fmt::format("{}: {} of {} with {} intervals, squares by weight, and the pooled effects as diamonds.",
                    forest.title, source.effect.name, CountOfStudyRows(forest.rows), source.level);
    return forest;
}

Forest CumulativeForest(const ReportSource& source)
{
    Forest forest = {.name = "cumulative-forest",
                     .title = "Cumulative forest plot",
                     .description = {},
                     .remarkHeader = LabelText(source.request.cumulative.column),
                     .hasWeights = false,
                     .rows = CumulativeForestRows(source),
                     .notes = {Capitalised(WordingOfModel(source.settings))}};
    forest.description =
        fmt::format("{}: the pooled {} with its {} interval after each of {}, in order of {}.", forest.title,
                    source.effect.name, source.level, CountOfStudyRows(forest.rows), forest.remarkHeader);
    return forest;
}

} // namespace

std::vector<Picture> ForestPictures(const ReportSource& source)
{
    std::vector<Picture> pictures = {DrawForest(source, WeightedForest(source))};
    if (const Forest forest = CumulativeForest(source); !forest.rows.empty())
        pictures.push_back(DrawForest(source, forest));
    return pictures;
}

} // namespace host
