#pragma once

#include "host/run/AnalysisRequest.h"
#include "host/run/RecordSummary.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace host {

struct OtherModel;

/// The results of a run and of the steps after it. They refer to the request, which must outlive them.
struct Analysis
{
    std::variant<MA_NAMESPACE::MABinModel, MA_NAMESPACE::MAContModel, MA_NAMESPACE::MAOutcomeModel> model;
    KXStatus status; ///< of the run
    std::optional<KXStatus>
        testStatus; ///< of the small-study test, when that was asked for and the run went well
    KXStatus bubbleStatus;
    /// The side that trim-and-fill trimmed, copied after the run: a small-study test of another type that
    /// runs later changes the model's own value when the side is chosen automatically.
    MAConst::TRIMFSIDE trimmedSide = MAConst::TRIM_SIDE_AUTO;

    /// tau² of each model by the global search; empty unless the run has MAStatusCode::TAU2_DOUBTFUL.
    std::vector<double> globalTau2;

    /// Null unless the forest plot is to have fixed and random effects.
    std::shared_ptr<const OtherModel> other = nullptr;

    const MA_NAMESPACE::MABaseModel& Base() const;
    RecordSummary Records(std::size_t read) const;
    /// Null for other outcomes than 2x2 tables and ready-made effects of them.
    const MA_NAMESPACE::MABinModel* Binary() const { return std::get_if<MA_NAMESPACE::MABinModel>(&model); }

    bool HasFailedTest() const { return testStatus && testStatus->IsError(); }
    /// The first error, or the status of the run.
    KXStatus FinalStatus() const;
};

/// The models of the other kind, of fixed effect or random effects, without the steps beyond them.
struct OtherModel
{
    MA_NAMESPACE::MAModelSettings settings;
    Analysis analysis;
};

/// Computes the effect sizes of the request's outcome, and nothing else.
Analysis ComputeEffectSizes(AnalysisRequest& request);

/// Runs the driver of the request's outcome, then the small-study test and the bubble plots that are asked
/// for. A failure of these steps leaves the results of the run as they are.
Analysis RunAnalysis(AnalysisRequest& request);

} // namespace host
