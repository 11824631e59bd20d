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
    return command == Command::EFFECTS || command == Command::REGRESSION || command == Command::BATCH;
}

} // namespace

Options::Options(Command ofCommand) : command(ofCommand)
{
    SetOutcome(command);
    if (command == Command::REGRESSION)
        outcome.reset();
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTau2Interval(MAConst::TAU2_INTERVAL_Q_PROFILE);
    settings.SetPooledZeroCells(MAConst::POOLED_ZERO_CELLS_IF_NEEDED);
}

void Options::SetOutcome(Command ofData)
{
    settings.SetOutcomesType(OutcomeOf(ofData));
    settings.SetInputESType(HasReadyMadeEffects(ofData) ? MAConst::INPUT_READY_MADE : MAConst::INPUT_RAW);
    if (const auto data = OutcomeDataOf(ofData))
        settings.SetOutcomeMeasure(OutcomeMeasuresOf(*data).front().value);
    outcome = ofData;
}

} // namespace host
