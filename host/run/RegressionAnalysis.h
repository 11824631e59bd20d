#pragma once

#include "host/run/RecordSummary.h"
#include "host/run/RegressionRequest.h"

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/MARegOutputStats.h"

#include <memory>
#include <optional>
#include <vector>

namespace host {

/// The prediction for a record, in the order of the engine's arguments; what is not known is missing.
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

/// What a meta-regression gave.
struct RegressionAnalysis
{
    KXStatus status;
    std::vector<KXStatus> warnings;
    std::unique_ptr<const MA_NAMESPACE::MARegOutputStats> output; ///< also after an error: what there is
    std::vector<std::optional<Score>> scores;                     ///< one a record; none for an unusable one
    RecordSummary records;
    std::optional<double> globalTau2; ///< by the global search, when the model's own is doubtful (460100)
};

/// Runs the engine of the model, fixed or random, and scores every record.
RegressionAnalysis RunRegression(const RegressionRequest& request, MAConst::MODELTYPE model);

} // namespace host
