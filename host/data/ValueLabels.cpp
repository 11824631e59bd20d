#include "host/data/ValueLabels.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

std::string ValueLabels::LabelOf(double value) const
{
    if (KXMV::IsMissing(value))
        return "(missing)";
    return texts.empty() ? fmt::format("{}", value) : texts[static_cast<std::size_t>(value)];
}

} // namespace host
