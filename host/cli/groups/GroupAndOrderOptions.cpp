#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/text/Wording.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;

OptionDefinition Descending(Settings& settings)
{
    return {.name = "descending",
            .help = "cumulative analysis: in descending order of the column",
            .store = [&settings](const std::string&) { settings.SetSortType(MAConst::SORT_DESCENDING); },
            .value =
                [&settings] {
                    return nlohmann::ordered_json(settings.GetSortType() == MAConst::SORT_DESCENDING);
                }};
}

void CheckContrasts(const Options& options)
{
    if (IsRandom(options.settings) && !options.contrasts.empty())
        throw UnusableInput(
            "--contrast needs --model fixed: contrasts are of studies that share one effect.");
}

} // namespace

OptionGroup GroupAndOrderOptions(Options& options)
{
    if (options.command == Command::REGRESSION)
        return {};
    return {
        .heading = "Groups, order and contrasts",
        .options =
            {
                Column("subgroup", options.subgroup, "a model for each group of studies with equal values"),
                Column("cumulative", options.cumulative,
                       "the model after each study, in order of the column"),
                Descending(options.settings),
                TextList("contrast", "COLUMN", options.contrasts,
                         "contrast coefficients of the studies, repeatable; for the fixed model"),
            },
        .complete = [&options] { CheckContrasts(options); }};
}

} // namespace host
