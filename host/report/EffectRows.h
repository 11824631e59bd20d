#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/Report.h"
#include "host/text/NumberFormat.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// Rows of effects with their tests. A part that is empty is not shown.
struct EffectRows
{
    Estimates naturals = {}; ///< on the natural scale, unless that is the scale of the analysis
    Estimates effects = {};  ///< on the scale of the analysis
    std::vector<double> stdErrors = {};
    std::vector<double> statistics = {};
    std::vector<double> significances = {};
};

/// The effects of the studies, without tests.
EffectRows StudyRows(const AnalysisData& data);

/// The models of each group and of all studies, or the latter alone. After a cumulative analysis these are
/// the last steps.
EffectRows PooledRows(const AnalysisData& data);

/// The cumulative analysis of a group, with an entry for each step.
struct CumulativeGroup
{
    std::vector<int> records;   ///< of the study added
    std::vector<double> values; ///< of the column that gives the order
    EffectRows effects;
};

/// The cumulative analysis of each group, or of all studies where there are no groups; empty without one.
std::vector<CumulativeGroup> CumulativeGroups(const AnalysisData& data);

/// The headers of a table's effects.
struct EffectHeaders
{
    std::string natural;
    std::string effect;
};

EffectHeaders HeadersOf(const Measure& measure);

/// Appends the columns of the rows to a table.
void AppendEffects(std::vector<ReportColumn>& table, const EffectRows& rows, const EffectHeaders& headers,
                   const AnalysisData& data);

} // namespace host
