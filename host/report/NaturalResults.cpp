#include "host/report/NaturalResults.h"

#include <variant>

using namespace MA_NAMESPACE;

namespace host {

namespace {

NaturalResults ResultsOf(const MABinModel& model)
{
    return {.studies = {model.GetExpEffectSize(), model.GetExpCILower(), model.GetExpCIUpper()},
            .models = {model.GetEstExpEffectSize(), model.GetEstExpCILower(), model.GetEstExpCIUpper()},
            .predictions = {{}, model.GetExpPILower(), model.GetExpPIUpper()},
            .leaveOneOut = {model.GetLeaveOneOutExpEffectSize(), model.GetLeaveOneOutExpCILower(),
                            model.GetLeaveOneOutExpCIUpper()},
            .filled = {{model.GetOverallTFExpEffectSize()},
                       {model.GetOverallTFExpCILower()},
                       {model.GetOverallTFExpCIUpper()}},
            .contrasts = {model.GetContrastExpEstES(), model.GetContrastExpEstCILower(),
                          model.GetContrastExpEstCIUpper()},
            .cumulative = {model.GetCumExpEstES(), model.GetCumExpEstCiLower(), model.GetCumExpEstCiUpper()}};
}

NaturalResults ResultsOf(const MAOutcomeModel& model)
{
    return {.studies = {model.GetNaturalEffectSize(), model.GetNaturalCILower(), model.GetNaturalCIUpper()},
            .models = {model.GetNaturalEstEffectSize(), model.GetNaturalEstCILower(),
                       model.GetNaturalEstCIUpper()},
            .predictions = {{}, model.GetNaturalPILower(), model.GetNaturalPIUpper()},
            .leaveOneOut = {model.GetLeaveOneOutNaturalEffectSize(), model.GetLeaveOneOutNaturalCILower(),
                            model.GetLeaveOneOutNaturalCIUpper()},
            .filled = {{model.GetOverallTFNaturalEffectSize()},
                       {model.GetOverallTFNaturalCILower()},
                       {model.GetOverallTFNaturalCIUpper()}},
            .contrasts = {},
            .cumulative = {model.GetCumNaturalEstES(), model.GetCumNaturalEstCiLower(),
                           model.GetCumNaturalEstCiUpper()}};
}

} // namespace

std::optional<NaturalResults> NaturalResultsOf(const Analysis& analysis, const Measure& measure)
{
    if (measure.scale == MAScale::Natural)
        return {};
    if (const MABinModel* const tables = analysis.Binary())
        return ResultsOf(*tables);
    if (const auto* const outcome = std::get_if<MAOutcomeModel>(&analysis.model))
        return ResultsOf(*outcome);
    return {};
}

} // namespace host
