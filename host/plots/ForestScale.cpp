#include "host/plots/ForestDrawing.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <cstddef>

namespace host {

namespace {

/// Of effects that are shown on another scale than that of the analysis, but for ratios, by the typical
/// standard errors that their intervals have on it.
int DecimalsOf(const AnalysisData& data)
{
    constexpr double WIDTH = 4; // of an interval, in standard errors
    if (!data.natural || data.measure.hasNoEffect)
        return data.decimals;
    std::vector<double> stdErrors;
    for (const Estimates* const shown : {&data.natural->studies, &data.natural->models})
        for (std::size_t i = 0; i < shown->values.size(); ++i)
            if (HasValue(shown->lower[i]) && HasValue(shown->upper[i]))
                stdErrors.push_back((shown->upper[i] - shown->lower[i]) / WIDTH);
    return DecimalsFor(stdErrors);
}

} // namespace

std::array<std::string, 2> GroupNamesOf(const ForestRequest& request)
{
    const ForestStyle& style = StyleOf(request.options.layout);
    const auto& names = request.options.groupNames;
    if (names)
        return {LabelText(names->first), LabelText(names->second)};
    return {style.treatment, style.control};
}

Picture DrawForest(const AnalysisData& data, const Forest& forest)
{
    return DrawForest({.measure = data.measure,
                       .names = NamesOfEffect(data),
                       .decimals = DecimalsOf(data),
                       .showsRatios = data.measure.isRatio && data.natural.has_value(),
                       .overall = OverallPlace(data),
                       .request = data.request.forest,
                       .style = &StyleOf(data.request.forest.options.layout),
                       .groupNames = GroupNamesOf(data.request.forest),
                       .isRandom = IsRandom(data.settings),
                       .hasBothModels = data.analysis.other != nullptr},
                      forest);
}

} // namespace host
