#include "host/cli/Options.h"

namespace host {

Options::Options(Command ofCommand) : command(ofCommand)
{
    const bool hasTables = command == Command::BINARY || command == Command::CONTINUOUS;
    settings.SetOutcomesType(command == Command::BINARY ? MAConst::OUTCOME_BINARY
                                                        : MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(hasTables ? MAConst::INPUT_RAW : MAConst::INPUT_READY_MADE);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTau2Interval(MAConst::TAU2_INTERVAL_Q_PROFILE);
    settings.SetPooledZeroCells(MAConst::POOLED_ZERO_CELLS_IF_NEEDED);
}

} // namespace host
