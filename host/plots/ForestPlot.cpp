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

std::string CountOfStudyRows(const std::vector<ForestRow>& rows)
{
    const auto count =
        std::count_if(rows.begin(), rows.end(), [](const ForestRow& row) { return row.kind == Kind::STUDY; });
    return CountOfStudies(static_cast<std::size_t>(count));
}

/// "The pooled odds ratio is 0.47 (95% CI 0.33 to 0.68)."
std::string PooledSentence(const AnalysisData& data)
{
    const ForestInterval pooled = OverallRow(data).shown;
    if (!pooled.HasLimits())
        return {};
    const int decimals = data.request.forest.digits.value_or(data.decimals - 2);
    const auto text = [&](double value) { return WithMinusSign(FixedText(value, decimals)); };
    return fmt::format(" The {} is {} ({} CI {} to {}).", "pooled " + data.measure.name,
                       text(pooled.estimate), data.level, text(pooled.lower), text(pooled.upper));
}

/// The title that is asked for stands behind what the picture is.
std::string TitleOf(const char* kind, const AnalysisData& data)
{
    const std::string& title = data.request.forest.options.title;
    return title.empty() ? kind : fmt::format("{}: {}", kind, title);
}

Forest WeightedForest(const AnalysisData& data)
{
    Forest forest = {.name = "forest",
                     .title = TitleOf("Forest plot", data),
                     .description = {},
                     .remarkHeader = {},
                     .hasWeights = true,
                     .rows = ForestRows(data),
                     .notes = OverallNotes(data),
                     .hasColumns = true};
    forest.description = fmt::format(
        "{}: {} of {} with {} intervals, squares by weight, and the pooled effects as diamonds.{}",
        forest.title, data.measure.name, CountOfStudyRows(forest.rows), data.level, PooledSentence(data));
    return forest;
}

Forest CumulativeForest(const AnalysisData& data)
{
    Forest forest = {.name = "cumulative-forest",
                     .title = TitleOf("Cumulative forest plot", data),
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
