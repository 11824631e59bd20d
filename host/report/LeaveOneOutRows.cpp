#include "host/report/LeaveOneOutRows.h"

using namespace MA_NAMESPACE;

namespace host {

EffectRows LeaveOneOutRows(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    EffectRows rows = {.effects = {base.GetLeaveOneOutEffectSize(), base.GetLeaveOneOutCILower(),
                                   base.GetLeaveOneOutCIUpper()},
                       .stdErrors = base.GetLeaveOneOutStdError(),
                       .statistics = base.GetLeaveOneOutZVal(),
                       .significances = base.GetLeaveOneOutSig()};
    if (data.natural)
        rows.naturals = data.natural->leaveOneOut;
    return rows;
}

} // namespace host
