#pragma once

#include "host/cli/Options.h"
#include "host/report/Report.h"
#include "host/run/RegressionAnalysis.h"
#include "host/run/RegressionRequest.h"
#include "host/text/Measures.h"
#include "host/text/NumberFormat.h"

#include <string>
#include <vector>

namespace host {

/// What sections show of a meta-regression: its request, its results, and how both are presented. It refers
/// to options, request and analysis, which must outlive it.
struct RegressionData
{
    RegressionData(const Options& ofOptions, const RegressionRequest& ofRequest,
                   const RegressionAnalysis& ofAnalysis);

    const Options& options;
    const RegressionRequest& request;
    const RegressionAnalysis& analysis;
    const MA_NAMESPACE::MARegOutputStats& output;
    bool isRandom;
    Measure measure;
    std::string level; ///< "95%"
    NumberFormat numbers;
    int decimals; ///< of effects and standard errors

    /// Whether the model is adjusted after Knapp and Hartung; only then are there degrees of freedom of F
    /// where that goes by heterogeneity.
    bool IsAdjusted() const;

    /// "t" or "z", by which coefficients are tested.
    const char* Statistic() const;
    /// Estimates with intervals on the scale of the analysis; of ratios then on their natural scale too.
    std::vector<ReportColumn> EstimateColumns(const std::string& header, const Estimates& estimates) const;
    /// As labels.
    std::vector<std::string> ParameterNames() const;
    std::vector<std::string> EffectNames() const;

    ReportColumn EffectColumn(const char* header, const std::vector<double>& values) const;
    ReportColumn StdErrorColumn(const char* header, const std::vector<double>& values) const;
};

/// A column of a table that has one row.
ReportColumn Cell(const char* header, const std::string& text);

} // namespace host
