#include "host/text/StatusText.h"

#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/MAStatusText.h"

#include <fmt/format.h>

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

std::string SentenceOf(int statusCode)
{
    if (const char* sentence = StatusText(statusCode))
        return sentence;
    return fmt::format("The library gives no meaning to code {}.", statusCode);
}

bool HasTau2Doubt(const std::vector<KXStatus>& warnings)
{
    return std::any_of(warnings.begin(), warnings.end(), [](const KXStatus& warning) {
        return warning.GetCode() == MAStatusCode::TAU2_DOUBTFUL;
    });
}

} // namespace host
