#pragma once

#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>
#include <vector>

namespace host {

// The library's values as JSON: a missing value or NaN as null, an infinity as "inf" or "-inf", a status as
// its code, an enumeration as its number, a set as whether it has each position.

inline nlohmann::ordered_json ToJson(double value)
{
    if (KXMV::IsMissing(value) || std::isnan(value))
        return nullptr;
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    return value;
}

inline nlohmann::ordered_json ToJson(int value)
{
    return value;
}

inline nlohmann::ordered_json ToJson(const KXStatus& status)
{
    return status.GetCode();
}

inline nlohmann::ordered_json ToJson(const KXBitSet& set)
{
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (std::size_t position = 0; position < set.Size(); ++position)
        array.push_back(set.Test(position));
    return array;
}

template <class Element>
nlohmann::ordered_json ToJson(const std::vector<Element>& values)
{
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const Element& value : values)
        array.push_back(ToJson(value));
    return array;
}

} // namespace host
