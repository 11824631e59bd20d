#include "host/plots/ForestDrawing.h"
#include "host/plots/PictureMakers.h"
#include "host/report/LeaveOneOutRows.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

/// A row for the model without each study, then the model of all.
std::vector<Picture> LeaveOneOutPictures(const AnalysisData& data)
{
    const EffectRows effects = LeaveOneOutRows(data);
    const std::vector<std::string> labels = data.StudyLabelsOf(data.base.GetNonMissingStudyID());
    if (effects.effects.values.empty() || labels.size() < 2)
        return {};
    Forest forest = {.name = "leave-one-out",
                     .title = "Leave-one-out forest plot",
                     .description = {},
                     .remarkHeader = {},
                     .hasWeights = false,
                     .rows = {},
                     .notes = {Capitalised(WordingOfModel(data.settings))}};
    for (std::size_t study = 0; study < labels.size(); ++study)
        forest.rows.push_back(EffectRow(data, "Without " + labels[study], effects, study));
    forest.rows.push_back(OverallRow(data));
    forest.description =
        fmt::format("{}: the pooled {} with its {} interval without each of {} in turn, and that of all.",
                    forest.title, data.measure.name, data.level, CountOfStudies(labels.size()));
    return {DrawForest(data, forest)};
}

} // namespace host
