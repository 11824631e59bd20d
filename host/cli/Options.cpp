#include "host/cli/Options.h"

namespace host {

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
    const bool hasTables = ofData == Command::BINARY || ofData == Command::CONTINUOUS;
    settings.SetOutcomesType(ofData == Command::BINARY ? MAConst::OUTCOME_BINARY
                                                       : MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(hasTables ? MAConst::INPUT_RAW : MAConst::INPUT_READY_MADE);
    outcome = ofData;
}

} // namespace host
