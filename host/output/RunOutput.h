#pragma once

#include "host/draw/Picture.h"
#include "host/report/Report.h"
#include "host/text/TableKind.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

/// The results of a run in each form of output. A form is made when the options ask for it.
struct RunOutput
{
    KXStatus status;
    std::function<Report()> report;
    std::function<std::string()> json;
    KXStatus furtherStatus = {}; ///< of the steps beyond the main analysis: their error leaves the report
    std::function<std::vector<Picture>()> pictures = {};
    std::string errorDetail = {}; ///< a sentence beside that of an error
    std::function<std::string(TableKind)> table = {};
};

} // namespace host
