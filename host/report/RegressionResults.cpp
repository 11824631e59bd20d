#include "host/report/RegressionResults.h"

#include "host/report/InfluenceResults.h"
#include "host/report/Tau2Results.h"
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

/// Adds what the getter Get<name> returns, under its name. A macro, so that key and getter are one word.
#define ADD_RESULT(name) results[#name] = ToJson(output.Get##name())

/// Hypotheses, tests of the effects and predictions.
void AddInference(Json& results, const MARegOutputStats& output)
{
    ADD_RESULT(HypothesisEstimate);
    ADD_RESULT(HypothesisStdError);
    ADD_RESULT(HypothesisVal);
    ADD_RESULT(HypothesisSig);
    ADD_RESULT(HypothesisLog10Sig);
    ADD_RESULT(HypothesisJointVal);
    ADD_RESULT(HypothesisJointDf);
    ADD_RESULT(HypothesisJointDf2);
    ADD_RESULT(HypothesisJointSig);
    ADD_RESULT(HypothesisJointLog10Sig);
    ADD_RESULT(EffectTestVal);
    ADD_RESULT(EffectTestDf);
    ADD_RESULT(EffectTestDf2);
    ADD_RESULT(EffectTestSig);
    ADD_RESULT(EffectTestLog10Sig);
    ADD_RESULT(VarianceInflation);
    ADD_RESULT(PredictedEffect);
    ADD_RESULT(PredictedStdError);
    ADD_RESULT(PredictedCILower);
    ADD_RESULT(PredictedCIUpper);
    ADD_RESULT(PredictedPILower);
    ADD_RESULT(PredictedPIUpper);
}

} // namespace

Json ResultsOf(const RegressionRequest& request, const RegressionAnalysis& analysis)
{
    const MARegOutputStats& output = *analysis.output;
    Json results;
    ADD_RESULT(NGoodRecords);
    ADD_RESULT(NBadRecords);
    ADD_RESULT(Tau);
    AddTau2(results, output);
    ADD_RESULT(Estimation);
    results["Parameters"] = NamesOf(output.GetParameters(), request);
    ADD_RESULT(RedundancyInfo);
    ADD_RESULT(BetaStandErr);
    ADD_RESULT(BetaTest);
    ADD_RESULT(BetaTestPValue);
    ADD_RESULT(BetaTestLog10PValue);
    ADD_RESULT(BetaConfInterValLower);
    ADD_RESULT(BetaConfInterValUpper);
    ADD_RESULT(WaldChiSquareTest);
    ADD_RESULT(WaldDf);
    ADD_RESULT(WaldPValue);
    ADD_RESULT(FTestVal);
    ADD_RESULT(FPValue);
    ADD_RESULT(ModelTestLog10PValue);
    ADD_RESULT(FDf1);
    ADD_RESULT(FDf2);
    ADD_RESULT(MultiDisper);
    ADD_RESULT(ResHomoChiSqure);
    ADD_RESULT(ResHomoDf);
    ADD_RESULT(ResHomoPValue);
    ADD_RESULT(ResHomoLog10PValue);
    ADD_RESULT(HresSquare);
    ADD_RESULT(IresSquare);
    ADD_RESULT(RSquare);
    AddInference(results, output);
    ADD_RESULT(RobustStdError);
    ADD_RESULT(RobustVal);
    ADD_RESULT(RobustDf);
    ADD_RESULT(RobustSig);
    ADD_RESULT(RobustCILower);
    ADD_RESULT(RobustCIUpper);
    ADD_RESULT(RobustCovariance);
    ADD_RESULT(RobustClusters);
    ADD_RESULT(PermutationSig);
    ADD_RESULT(PermutationModelSig);
    ADD_RESULT(PermutationCount);
    ADD_RESULT(PermutationExact);
    AddInfluence(results, output);
    ADD_RESULT(InfluenceDFBETAS);
    results["Score"] = ScoresOf(analysis);
    return results;
}

#undef ADD_RESULT

} // namespace host
