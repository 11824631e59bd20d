#pragma once

#include <nlohmann/json.hpp>

#include <fstream>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

/// Expected figures of a data set: tests/reference/<dataSet>.json, keys in the README there.
inline nlohmann::json LoadReference(const std::string& dataSet)
{
    std::ifstream file(TESTS_DIR "/reference/" + dataSet + ".json");
    if (!file)
        throw std::runtime_error("no reference figures for " + dataSet);
    return nlohmann::json::parse(file);
}

/// NaN where the figure is not defined.
inline double Number(const nlohmann::json& node)
{
    return node.is_null() ? std::numeric_limits<double>::quiet_NaN() : node.get<double>();
}
