#pragma once

#include "host/Request.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <variant>

namespace host {

/// An analysis after its run. It refers to the request, which must outlive it.
struct Analysis
{
    std::variant<MA_NAMESPACE::MABinModel, MA_NAMESPACE::MAContModel> model;
    KXStatus status;

    const MA_NAMESPACE::MABaseModel& Base() const;
    /// Null for continuous outcomes.
    const MA_NAMESPACE::MABinModel* Binary() const { return std::get_if<MA_NAMESPACE::MABinModel>(&model); }
};

/// Runs the driver of the request's kind of outcome.
Analysis RunAnalysis(Request& request);

} // namespace host
