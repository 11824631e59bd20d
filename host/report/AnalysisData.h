#pragma once

#include "host/report/Report.h"
#include "host/run/Analysis.h"
#include "host/run/AnalysisRequest.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// What the sections of an analysis' report need of it. It refers to request and analysis.
struct AnalysisData
{
    AnalysisData(const AnalysisRequest& ofRequest, const Analysis& ofAnalysis);

    const AnalysisRequest& request;
    const Analysis& analysis;
    const MA_NAMESPACE::MAModelSettings& settings;
    const MA_NAMESPACE::MABaseModel& base;
    EffectWording effect;
    const MA_NAMESPACE::MABinModel* binary; ///< of a ratio, which has results on the ratio scale; else null
    std::string level;                      ///< "95%"
    int decimals;                           ///< of effects and standard errors
    std::vector<std::string> groupLabels;   ///< empty unless there are two groups or more

    /// Labels of rows that are one for each group and a last one for all studies, or the latter alone.
    std::vector<std::string> RowLabels(std::size_t rowCount) const;
    std::vector<std::string> StudyLabelsOf(const std::vector<int>& records) const;
    std::string IntervalHeader(const std::string& symbol) const;
    std::string EffectText(double value) const { return FixedText(value, decimals); }
};

/// Rows of effects with their tests. A part that is empty is not shown.
struct EffectRows
{
    Estimates ratios;
    Estimates effects;
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<double> significances;
};

/// What a table calls its effects.
struct EffectHeaders
{
    std::string ratio;
    std::string effect;
};

EffectHeaders HeadersOf(const EffectWording& effect);

/// Appends the columns of the rows to a table.
void AppendEffects(std::vector<ReportColumn>& table, const EffectRows& rows, const EffectHeaders& headers,
                   const AnalysisData& data);

} // namespace host
