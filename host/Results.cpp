#include "host/Results.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>
#include <type_traits>
#include <vector>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Json = nlohmann::ordered_json;

Json ToJson(double value)
{
    if (KXMV::IsMissing(value) || std::isnan(value))
        return nullptr;
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    return value;
}

Json ToJson(int value)
{
    return value;
}

Json ToJson(const KXStatus& status)
{
    return status.GetCode();
}

template <class Element>
Json ToJson(const std::vector<Element>& values)
{
    Json array = Json::array();
    for (const Element& value : values)
        array.push_back(ToJson(value));
    return array;
}

void AddBaseResults(Json& results, const MABaseModel& model)
{
    results["ModelType"] = ToJson(model.GetModelType());
    results["WeightType"] = ToJson(model.GetWeightType());
    results["InputESType"] = ToJson(model.GetInputESType());
    results["NMissing"] = ToJson(model.GetNMissing());
    results["NInvalid"] = ToJson(model.GetNInvalid());
    results["NDropped"] = ToJson(model.GetNDropped());
    results["Warnings"] = ToJson(model.GetWarnings());
    results["EffectSize"] = ToJson(model.GetEffectSize());
    results["Variance"] = ToJson(model.GetVariance());
    results["StdError"] = ToJson(model.GetStdError());
    results["ZVal"] = ToJson(model.GetZVal());
    results["Sig"] = ToJson(model.GetSig());
    results["CILower"] = ToJson(model.GetCILower());
    results["CIUpper"] = ToJson(model.GetCIUpper());
    results["SampSize"] = ToJson(model.GetSampSize());
    results["Weight"] = ToJson(model.GetWeight());
    results["NormalizedWeight"] = ToJson(model.GetNormalizedWeight());
    results["NonMissingStudyID"] = ToJson(model.GetNonMissingStudyID());
    results["EstEffectSize"] = ToJson(model.GetEstEffectSize());
    results["EstStdError"] = ToJson(model.GetEstStdError());
    results["EstZVal"] = ToJson(model.GetEstZVal());
    results["EstSig"] = ToJson(model.GetEstSig());
    results["EstCILower"] = ToJson(model.GetEstCILower());
    results["EstCIUpper"] = ToJson(model.GetEstCIUpper());
    results["PILower"] = ToJson(model.GetPILower());
    results["PIUpper"] = ToJson(model.GetPIUpper());
    results["Tau2Var"] = ToJson(model.GetTau2Var());
    results["HomoTestChisquareQ"] = ToJson(model.GetHomoTestChisquareQ());
    results["HomoTestdf"] = ToJson(model.GetHomoTestdf());
    results["HomoTestSig"] = ToJson(model.GetHomoTestSig());
    results["H2Index"] = ToJson(model.GetH2Index());
    results["H2CILower"] = ToJson(model.GetH2CILower());
    results["H2CIUpper"] = ToJson(model.GetH2CIUpper());
    results["I2Index"] = ToJson(model.GetI2Index());
    results["I2CILower"] = ToJson(model.GetI2CILower());
    results["I2CIUpper"] = ToJson(model.GetI2CIUpper());
    results["UniGroup"] = ToJson(model.GetUniGroup());
    results["GroupN"] = ToJson(model.GetGroupN());
    results["SubGroupStudyID"] = ToJson(model.GetSubGroupStudyID());
}

void AddOwnResults(Json& results, const MABinModel& model)
{
    results["ESType"] = ToJson(model.GetESType());
    results["ExpEffectSize"] = ToJson(model.GetExpEffectSize());
    results["ExpVariance"] = ToJson(model.GetExpVariance());
    results["ExpStdError"] = ToJson(model.GetExpStdError());
    results["ExpCILower"] = ToJson(model.GetExpCILower());
    results["ExpCIUpper"] = ToJson(model.GetExpCIUpper());
    results["EstExpEffectSize"] = ToJson(model.GetEstExpEffectSize());
    results["EstExpCILower"] = ToJson(model.GetEstExpCILower());
    results["EstExpCIUpper"] = ToJson(model.GetEstExpCIUpper());
    results["ExpPILower"] = ToJson(model.GetExpPILower());
    results["ExpPIUpper"] = ToJson(model.GetExpPIUpper());
}

void AddOwnResults(Json& results, const MAContModel& model)
{
    results["ESType"] = ToJson(model.GetESType());
}

} // namespace

Json ResultsOf(const Analysis& analysis)
{
    Json results;
    AddBaseResults(results, analysis.Base());
    std::visit([&results](const auto& model) { AddOwnResults(results, model); }, analysis.model);
    return results;
}

} // namespace host
