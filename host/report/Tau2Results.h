#pragma once

#include "host/text/JsonValue.h"

namespace host {

/// Adds the interval of tau², how its estimate ended, and the fit. Pooling and regression have the same
/// getters.
template <class Source>
void AddTau2(nlohmann::ordered_json& results, const Source& source)
{
    results["Tau2CILower"] = ToJson(source.GetTau2CILower());
    results["Tau2CIUpper"] = ToJson(source.GetTau2CIUpper());
    results["Tau2Convergence"] = ToJson(source.GetTau2Convergence());
    results["Tau2Evaluations"] = ToJson(source.GetTau2Evaluations());
    results["LogLikelihood"] = ToJson(source.GetLogLikelihood());
    results["AIC"] = ToJson(source.GetAIC());
    results["BIC"] = ToJson(source.GetBIC());
    results["AICc"] = ToJson(source.GetAICc());
}

} // namespace host
