#pragma once

#include "host/report/EffectRows.h"

namespace host {

/// The models of all studies but one; empty when they are not asked for.
EffectRows LeaveOneOutRows(const AnalysisData& data);

} // namespace host
