#pragma once

#include "host/ReportSource.h"

namespace host {

/// How many tables had the zero-cell correction for the studies' own effects; empty when none had.
std::string WordingOfStudyCorrection(const ReportSource& source);

/// How many tables were pooled with it, where tables are pooled and some have a zero cell; else empty.
std::string WordingOfPooledCorrection(const ReportSource& source);

} // namespace host
