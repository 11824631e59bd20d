#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"
#include "host/data/RecordLines.h"
#include "host/run/ForestRequest.h"
#include "host/run/RawEffects.h"

#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// The input of a meta-regression: settings with the positions of the columns, and the data.
struct RegressionRequest
{
    MA_NAMESPACE::MARegSettings settings;
    KXVarList variables;
    std::map<int, std::vector<std::string>> levels; ///< of each factor by its position, in the order coded
    std::vector<Record> records;
    std::vector<std::string> studyLabels; ///< one a record
    RecordLines lines;
    std::optional<RawEffects> rawEffects; ///< none for ready-made effect sizes
    bool hasPictures = false;             ///< whether the coordinates of plots are asked for
    int bubblePoints = 0;                 ///< of a line
    ForestRequest forest = {};
};

/// Picks and codes the columns that the options name. Throws UnusableInput.
RegressionRequest MakeRegressionRequest(const Options& options, const DataTable& table);

/// The name of a parameter: "(intercept)", "latitude", "latitude^2", "allocation=random*latitude".
std::string ParameterName(const KXRegrParameter& parameter, const RegressionRequest& request);
/// The name of an effect: "latitude", "allocation*latitude".
std::string EffectName(const KXModelEffect& effect, const RegressionRequest& request);

} // namespace host
