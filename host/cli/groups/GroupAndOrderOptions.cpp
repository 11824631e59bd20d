#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

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

/// The groups of a cumulative analysis are models of their own at each step.
void CheckCommonTau2(const Options& options)
{
    if (options.settings.GetCommonTau2() && options.cumulative)
        throw UnusableInput("--common-tau2 and --cumulative cannot be asked for together.");
}

} // namespace

OptionGroup GroupAndOrderOptions(Options& options)
{
    if (!HasSteps(options.command))
        return {};
    return {
        .heading = "Groups, order and contrasts",
        .options =
            {
                Column("subgroup", options.subgroup, "a model for each group of studies with equal values"),
                Flag("keep-missing-groups", options.keepsMissingGroups,
                     "studies without a value of --subgroup as a group of their own, in place of in none"),
                Flag("common-tau2", options.settings, &Settings::GetCommonTau2, &Settings::SetCommonTau2,
                     "one between-study variance for all groups"),
                Column("cumulative", options.cumulative,
                       "the model after each study, in order of the column"),
                Descending(options.settings),
                TextList("contrast", "COLUMN", options.contrasts,
                         "contrast coefficients of the studies, repeatable; for the fixed model"),
            },
        .complete = [&options] { CheckCommonTau2(options); }};
}

} // namespace host
