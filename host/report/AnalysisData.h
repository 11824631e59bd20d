#pragma once

#include "host/report/NaturalResults.h"
#include "host/run/Analysis.h"
#include "host/run/AnalysisRequest.h"
#include "host/text/Measures.h"
#include "host/text/NumberFormat.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// The label of the row of all studies.
inline constexpr const char* OVERALL = "Overall";

/// The value that the library lists for all studies, behind those of the groups. A group can have it too.
inline constexpr double OVERALL_GROUP = -1;

/// What sections and pictures show of an analysis: its request, its results, and how both are presented. It
/// refers to request and analysis, which must outlive it.
struct AnalysisData
{
    AnalysisData(const AnalysisRequest& ofRequest, const Analysis& ofAnalysis);
    /// Of an analysis by other settings than the request's.
    AnalysisData(const AnalysisRequest& ofRequest, const Analysis& ofAnalysis,
                 const MA_NAMESPACE::MAModelSettings& ofSettings);

    const AnalysisRequest& request;
    const Analysis& analysis;
    const MA_NAMESPACE::MAModelSettings& settings;
    const MA_NAMESPACE::MABaseModel& base;
    Measure measure;
    std::optional<NaturalResults> natural; ///< unless the analysis is on the natural scale
    std::string level;                     ///< "95%"
    NumberFormat numbers;
    int decimals;                         ///< of effects and standard errors
    std::vector<std::string> groupLabels; ///< empty unless there are two groups or more

    /// Labels of the rows of each group and of all studies, or of all studies alone. Without groups, a first
    /// of two rows is that of the studies in a cumulative analysis which lacks some.
    std::vector<std::string> RowLabels(std::size_t rowCount) const;
    std::vector<std::string> StudyLabelsOf(const std::vector<int>& records) const;
    std::vector<std::string> VariableLabelsOf(const std::vector<int>& positions) const;
    std::string IntervalHeader(const std::string& symbol) const;
    std::string EffectText(double value) const { return FixedText(value, decimals); }
    /// A pooled value as the sentences and tables have it: on the natural scale where the analysis has
    /// another.
    std::string PooledText(double value) const { return natural ? numbers(value) : EffectText(value); }
};

} // namespace host
