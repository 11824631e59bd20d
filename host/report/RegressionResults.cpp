#include "host/report/RegressionResults.h"

#include "host/text/JsonValue.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Json = nlohmann::ordered_json;

Json NamesOf(const std::vector<KXRegrParameter>& parameters, const RegressionRequest& request)
{
    Json names = Json::array();
    for (const KXRegrParameter& parameter : parameters)
        names.push_back(ParameterName(parameter, request));
    return names;
}

Json ScoresOf(const RegressionAnalysis& analysis)
{
    Json scores = Json::array();
    for (const std::optional<Score>& score : analysis.scores) {
        if (!score)
            scores.push_back(nullptr);
        else
            scores.push_back(
                ToJson(std::vector<double>{score->fit, score->stdError, score->lower, score->upper,
                                           score->residual, score->residualStdError, score->leverage}));
    }
    return scores;
}

} // namespace

Json ResultsOf(const RegressionRequest& request, const RegressionAnalysis& analysis)
{
    const MARegOutputStats& output = *analysis.output;
    Json results;
    results["NGoodRecords"] = ToJson(output.GetNGoodRecords());
    results["NBadRecords"] = ToJson(output.GetNBadRecords());
    results["Tau"] = ToJson(output.GetTau());
    results["Tau2CILower"] = ToJson(output.GetTau2CILower());
    results["Tau2CIUpper"] = ToJson(output.GetTau2CIUpper());
    results["Tau2Convergence"] = ToJson(output.GetTau2Convergence());
    results["Tau2Evaluations"] = ToJson(output.GetTau2Evaluations());
    results["LogLikelihood"] = ToJson(output.GetLogLikelihood());
    results["AIC"] = ToJson(output.GetAIC());
    results["BIC"] = ToJson(output.GetBIC());
    results["AICc"] = ToJson(output.GetAICc());
    results["Estimation"] = ToJson(output.GetEstimation());
    results["Parameters"] = NamesOf(output.GetParameters(), request);
    results["RedundancyInfo"] = ToJson(output.GetRedundancyInfo());
    results["BetaStandErr"] = ToJson(output.GetBetaStandErr());
    results["BetaTest"] = ToJson(output.GetBetaTest());
    results["BetaTestPValue"] = ToJson(output.GetBetaTestPValue());
    results["BetaTestLog10PValue"] = ToJson(output.GetBetaTestLog10PValue());
    results["BetaConfInterValLower"] = ToJson(output.GetBetaConfInterValLower());
    results["BetaConfInterValUpper"] = ToJson(output.GetBetaConfInterValUpper());
    results["WaldChiSquareTest"] = ToJson(output.GetWaldChiSquareTest());
    results["WaldDf"] = ToJson(output.GetWaldDf());
    results["WaldPValue"] = ToJson(output.GetWaldPValue());
    results["FTestVal"] = ToJson(output.GetFTestVal());
    results["FPValue"] = ToJson(output.GetFPValue());
    results["ModelTestLog10PValue"] = ToJson(output.GetModelTestLog10PValue());
    results["FDf1"] = ToJson(output.GetFDf1());
    results["FDf2"] = ToJson(output.GetFDf2());
    results["MultiDisper"] = ToJson(output.GetMultiDisper());
    results["ResHomoChiSqure"] = ToJson(output.GetResHomoChiSqure());
    results["ResHomoDf"] = ToJson(output.GetResHomoDf());
    results["ResHomoPValue"] = ToJson(output.GetResHomoPValue());
    results["ResHomoLog10PValue"] = ToJson(output.GetResHomoLog10PValue());
    results["HresSquare"] = ToJson(output.GetHresSquare());
    results["IresSquare"] = ToJson(output.GetIresSquare());
    results["RSquare"] = ToJson(output.GetRSquare());
    results["Score"] = ScoresOf(analysis);
    return results;
}

} // namespace host
