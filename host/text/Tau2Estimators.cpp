#include "host/text/Tau2Estimators.h"

#include <vector>

namespace host {

std::string NamesOfEstimators(bool (*hasProperty)(MAConst::TAU2ESTIMATOR), std::string_view prefix)
{
    std::vector<std::string> names;
    for (const Tau2Estimator& estimator : TAU2_ESTIMATORS)
        if (hasProperty(estimator.value))
            names.push_back(fmt::format("{}{}", prefix, estimator.name));
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    return text;
}

} // namespace host
