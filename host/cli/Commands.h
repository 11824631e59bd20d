#pragma once

#include "host/cli/Options.h"
#include "host/text/Choice.h"

#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <array>
#include <optional>
#include <string_view>

namespace host {

/// A command with its word and what its help says first.
struct CommandRow
{
    std::string_view name;
    Command value;
    const char* help;
    /// What its studies report, for the commands of MAOutcomeModel, whose columns and measures follow from
    /// it.
    std::optional<MA_NAMESPACE::MAOutcomeData> data = {};
};

/// The commands in the order of the help.
inline constexpr std::array COMMANDS{
    CommandRow{"binary", Command::BINARY, "2x2 tables: events and non-events in two groups"},
    CommandRow{"continuous", Command::CONTINUOUS, "Sizes, means and standard deviations of two groups"},
    CommandRow{"rates", Command::RATES, "Events and person-time of two groups",
               MA_NAMESPACE::MAOutcomeData::Rates},
    CommandRow{"proportion", Command::PROPORTION, "Events among the persons of one group",
               MA_NAMESPACE::MAOutcomeData::Proportion},
    CommandRow{"rate", Command::RATE, "Events and person-time of one group",
               MA_NAMESPACE::MAOutcomeData::Rate},
    CommandRow{"correlation", Command::CORRELATION, "Correlation coefficients of one group",
               MA_NAMESPACE::MAOutcomeData::Correlation},
    CommandRow{"mean", Command::MEAN, "Means and standard deviations of one group",
               MA_NAMESPACE::MAOutcomeData::Mean},
    CommandRow{"effects", Command::EFFECTS,
               "Ready-made effect sizes with their variances or standard errors"},
    CommandRow{"regression", Command::REGRESSION,
               "Meta-regression of effect sizes, ready-made or of raw data, on covariates and factors"},
    CommandRow{"batch", Command::BATCH, "Many analyses in one run, of files of ready-made effect sizes"},
};
static_assert(HasEachEnumerator<COMMANDS>());

/// What the studies of the command report; none for a command of another driver.
inline std::optional<MA_NAMESPACE::MAOutcomeData> OutcomeDataOf(Command command)
{
    return RowOf(COMMANDS, command).data;
}

} // namespace host
