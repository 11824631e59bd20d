#pragma once

#include "host/run/RecordSummary.h"
#include "host/run/RegressionRequest.h"

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/MARegOutputStats.h"
#include "meta_analysis/regression/MARegPlots.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace host {

/// The prediction for a record, in the order of the engine's arguments. Unknown values are missing.
struct Score
{
    double fit;
    double stdError;
    double lower;
    double upper;
    double residual;
    double residualStdError;
    double leverage;
};

/// The results of a meta-regression.
struct RegressionAnalysis
{
    KXStatus status;
    std::vector<KXStatus> warnings;
    std::unique_ptr<const MA_NAMESPACE::MARegOutputStats>
        output;                               ///< after an error, what was computed before it
    std::vector<std::optional<Score>> scores; ///< one a record; none for an unusable one
    RecordSummary records;
    std::vector<MA_NAMESPACE::MARegForestRow> forest;     ///< plots are empty when they are not asked for
    std::map<int, MA_NAMESPACE::MARegBubblePlot> bubbles; ///< by covariate
    std::optional<double> globalTau2; ///< by the global search, after MAStatusCode::TAU2_DOUBTFUL
};

/// Runs the engine of the model, fixed or random, and scores every record.
RegressionAnalysis RunRegression(const RegressionRequest& request, MAConst::MODELTYPE model);

} // namespace host
