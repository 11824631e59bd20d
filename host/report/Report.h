#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"
#include "host/run/Analysis.h"

#include <string>
#include <vector>

namespace host {

/// A column of a table; texts stand on its left, numbers on its right.
struct ReportColumn
{
    std::string header;
    std::vector<std::string> cells;
    bool isText = false;
};

/// A titled part of a report: a table, its columns of equal length, then sentences; either may be empty.
struct ReportSection
{
    std::string title;
    std::vector<ReportColumn> table;
    std::vector<std::string> sentences;
};

/// What a report says, whatever it is rendered as.
struct Report
{
    std::string title;
    std::vector<ReportSection> sections;
};

/// The report of an analysis that ended without error.
Report MakeReport(const Options& options, const DataTable& table, const AnalysisRequest& request,
                  const Analysis& analysis);

} // namespace host
