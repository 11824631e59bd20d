#pragma once

#include "host/cli/Options.h"

#include <array>

namespace host {

/// The columns that a group is reported in, by what they hold.
struct GroupColumns
{
    const char* suffix; ///< of headers
    const ColumnName& events;
    const ColumnName& nonEvents;
    const ColumnName& time;
    const ColumnName& size;
    const ColumnName& mean;
    const ColumnName& stdDev;
    const ColumnName* variance;    ///< null where the data have none
    const SummaryColumns* summary; ///< the same
};

/// Of the treatment group, the control group, and the only group of other data. Refers to the options.
inline std::array<GroupColumns, 3> GroupColumnsOf(const Options& options)
{
    return {GroupColumns{" (treatment)", options.treatmentEvents, options.treatmentNonEvents,
                         options.treatmentTime, options.treatmentSize, options.treatmentMean,
                         options.treatmentStdDev, &options.treatmentVariance, &options.treatmentSummary},
            GroupColumns{" (control)", options.controlEvents, options.controlNonEvents, options.controlTime,
                         options.controlSize, options.controlMean, options.controlStdDev,
                         &options.controlVariance, &options.controlSummary},
            GroupColumns{"", options.events, options.nonEvents, options.time, options.size, options.mean,
                         options.stdDev, nullptr, nullptr}};
}

} // namespace host
