#pragma once

#include "host/report/AnalysisData.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// A fitted model of an analysis, of a group or of all studies. What a model lacks is missing.
struct ModelRow
{
    std::string label = {};                ///< empty where there is only one
    std::vector<std::size_t> studies = {}; ///< their positions among all
    bool isOverall = false;
    double tau2 = 0;
    double tau2Upper = 0;
    double tau2Convergence = 0;
    double i2 = 0; ///< a fraction
    double i2Lower = 0;
    double i2Upper = 0;
    double q = 0;
    double qDf = 0;
    double qSig = 0;
    double estimate = 0;
    double ciLower = 0;
    double ciUpper = 0;
    double predictionLower = 0;
    double predictionUpper = 0;
    double df = 0; ///< of Student's t; missing for a normal test
};

/// The models of each group, or of the studies in a cumulative analysis where it lacks some, and of all
/// studies.
std::vector<ModelRow> ModelRowsOf(const AnalysisData& data);

} // namespace host
