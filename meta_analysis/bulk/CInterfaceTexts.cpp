#include "meta_analysis/bulk/meta_analysis.h"
#include "meta_analysis/settings/MAExclusionTexts.h"
#include "meta_analysis/settings/MAStatusText.h"

using namespace MA_NAMESPACE;

const char* ma_status_text(int32_t status)
{
    if (status == MA_STATUS_OK)
        return "There is no error and no warning.";
    const char* const text = StatusText(status);
    return text != nullptr ? text : "The library gives no meaning to this status.";
}

const char* ma_exclusion_text(int32_t exclusion)
{
    for (const auto& row : exclusionTexts)
        if (static_cast<int32_t>(row.value) == exclusion)
            return row.name.data();
    return "The library gives no meaning to this exclusion.";
}

const char* ma_version(void)
{
    return META_ANALYSIS_VERSION;
}
