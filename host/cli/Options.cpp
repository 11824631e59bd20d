#include "host/cli/Options.h"

#include "host/cli/Commands.h"
#include "host/text/Measures.h"

namespace host {

namespace {

MAConst::OUTCOMETYPE OutcomeOf(Command command)
{
    if (OutcomeDataOf(command))
        return MAConst::OUTCOME_MEASURED;
    return command == Command::BINARY ? MAConst::OUTCOME_BINARY : MAConst::OUTCOME_CONTINUOUS;
}

bool HasReadyMadeEffects(Command command)
{
    return command == Command::EFFECTS || command == Command::REGRESSION;
}

} // namespace

Options::Options(Command ofCommand) : command(ofCommand)
{
    SetOutcome(command);
    if (command == Command::REGRESSION)
        outcome.reset();
    settings.SetOutcomesType(OutcomeOf(command));
    settings.SetInputESType(HasReadyMadeEffects(command) ? MAConst::INPUT_READY_MADE : MAConst::INPUT_RAW);
    if (const auto data = OutcomeDataOf(command))
        settings.SetOutcomeMeasure(OutcomeMeasuresOf(*data).front().value);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTau2Interval(MAConst::TAU2_INTERVAL_Q_PROFILE);
    settings.SetPooledZeroCells(MAConst::POOLED_ZERO_CELLS_IF_NEEDED);
}

void Options::SetOutcome(Command ofData)
{
    const bool hasTables = ofData == Command::BINARY || ofData == Command::CONTINUOUS;
    settings.SetOutcomesType(ofData == Command::BINARY ? MAConst::OUTCOME_BINARY
                                                       : MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(hasTables ? MAConst::INPUT_RAW : MAConst::INPUT_READY_MADE);
    outcome = ofData;
}

} // namespace host
