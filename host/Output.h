#pragma once

#include "host/ExitStatus.h"
#include "host/cli/Options.h"
#include "host/data/DataTable.h"
#include "host/draw/Picture.h"
#include "host/report/Report.h"
#include "host/run/Analysis.h"
#include "host/run/AnalysisRequest.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

/// Throws UnusableInput when it is plain before the analysis that an output cannot be written: it would
/// replace the data or another output, has no folder, or should be one and is a file.
void CheckOutputPlaces(const Options& options);

/// What a run has to show, whichever the command. A form is made when the options ask for it.
struct RunOutput
{
    KXStatus status;
    std::function<Report()> report;
    std::function<std::string()> json;
    KXStatus furtherStatus = {}; ///< of what is beyond the main analysis: its error leaves the report
    std::function<std::vector<Picture>()> pictures = {};
};

/// Writes what the options ask for: the report to standard output, the JSON, the page and the pictures; of a
/// run that ended with an error, the JSON and a sentence on standard error; of one with an error beyond the
/// main analysis, all of it. Everything is rendered before the first byte is written. What cannot be drawn or
/// written, or would replace the data or another output, is left out with a sentence on standard error.
ExitStatus WriteOutput(const Options& options, const RunOutput& output);
ExitStatus WriteOutput(const Options& options, const DataTable& table, const AnalysisRequest& request,
                       const Analysis& analysis);

/// Throws UnusableInput when it fails, but not when the reader of a pipe has had enough, such as `head`.
void WriteStandardOutput(const std::string& text);
/// With the name of the program.
void WriteToStandardError(const char* sentence) noexcept;

} // namespace host
