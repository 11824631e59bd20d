#pragma once

#include "host/text/JsonValue.h"

namespace host {

/// Adds the deletion diagnostics of an analysis or a meta-regression, under the names of their getters.
template <class Results>
void AddInfluence(nlohmann::ordered_json& json, const Results& results)
{
    json["InfluenceStudentizedResidual"] = ToJson(results.GetInfluenceStudentizedResidual());
    json["InfluenceDFFITS"] = ToJson(results.GetInfluenceDFFITS());
    json["InfluenceCookDistance"] = ToJson(results.GetInfluenceCookDistance());
    json["InfluenceCovarianceRatio"] = ToJson(results.GetInfluenceCovarianceRatio());
    json["InfluenceTau2Deleted"] = ToJson(results.GetInfluenceTau2Deleted());
    json["InfluenceQDeleted"] = ToJson(results.GetInfluenceQDeleted());
    json["InfluenceHat"] = ToJson(results.GetInfluenceHat());
    json["InfluenceWeight"] = ToJson(results.GetInfluenceWeight());
    json["InfluenceRules"] = ToJson(results.GetInfluenceRules());
    json["InfluenceCutoffs"] = ToJson(results.GetInfluenceCutoffs());
    json["BaujatX"] = ToJson(results.GetBaujatX());
    json["BaujatY"] = ToJson(results.GetBaujatY());
}

} // namespace host
