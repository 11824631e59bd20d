#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/RegressionData.h"
#include "host/report/Report.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// The deletion diagnostics of an analysis or a meta-regression, an entry a study; empty where none were
/// asked for.
struct InfluenceTable
{
    std::vector<std::string> labels;
    std::vector<double> residuals;
    std::vector<double> dffits;
    std::vector<double> cookDistances;
    std::vector<double> covarianceRatios;
    std::vector<double> tau2; ///< without the study; so is Q
    std::vector<double> q;
    std::vector<double> hat;
    std::vector<double> weights; ///< in percent
    std::vector<double> baujatX;
    std::vector<double> baujatY;
    std::vector<int> rules;
    std::vector<double> cutoffs; ///< of each rule
    double tau2OfAll = 0;
    double qOfAll = 0;
    NumberFormat numbers = {};
    std::size_t parameterCount = 1; ///< that are not redundant

    // Of a meta-regression.
    std::vector<std::string> parameters;
    std::vector<std::vector<double>> dfbetas;

    bool IsEmpty() const { return rules.empty(); }
    /// Whether the study meets a rule of influence; the one of outliers is none.
    bool IsInfluential(std::size_t study) const;
    bool IsOutlier(std::size_t study) const;
};

InfluenceTable InfluenceTableOf(const AnalysisData& data);
InfluenceTable InfluenceTableOf(const RegressionData& data);

/// The table as a section, with the studies that stand out by name; none for an empty one.
ReportSections SectionsOf(const InfluenceTable& table);

} // namespace host
