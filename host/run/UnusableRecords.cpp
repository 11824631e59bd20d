#include "host/run/UnusableRecords.h"

#include "host/text/Exclusions.h"
#include "host/text/PlainText.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <vector>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::vector<std::string> ColumnsWithoutValue(const RegressionRequest& request, const Record& record)
{
    std::vector<std::string> columns;
    for (int variable = 0; variable < static_cast<int>(record.Size()); ++variable)
        if (KXMV::IsMissing(record.Get(variable)))
            columns.push_back('\'' + LabelText(request.variables.GetVarAt(variable).name) + '\'');
    return columns;
}

} // namespace

bool HasMissing(const Record& record)
{
    for (std::size_t i = 0; i < record.Size(); ++i)
        if (KXMV::IsMissing(record.Get(static_cast<int>(i))))
            return true;
    return false;
}

std::optional<std::string> ReasonOfUnusable(const RegressionRequest& request, const Record& record)
{
    if (HasMissing(record))
        return fmt::format("missing value of {}", fmt::join(ColumnsWithoutValue(request, record), " and "));
    if (!(record.Get(request.settings.GetOMWVarIndex()) > 0.0))
        return request.settings.GetOMWVarType() == MAConst::OMEGA_WEIGHT
                   ? "weight not above 0"
                   : NameOf(EXCLUSIONS, MAConst::EXCLUSION_SPREAD_NOT_POSITIVE);
    return std::nullopt;
}

} // namespace host
