#include "host/report/AnalysisResults.h"

#include "host/text/JsonValue.h"
#include "host/text/Wording.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Json = nlohmann::ordered_json;

/// The parameters of the small-study tests as texts.
Json TestParameters(const MABaseModel& model)
{
    const std::string covariate = WordingOfTestCovariate(model.GetRegTesType());
    Json tests = Json::array();
    for (const std::vector<KXRegrParameter>& parameters : model.GetRegrCoefParameters()) {
        Json texts = Json::array();
        for (const KXRegrParameter& parameter : parameters)
            texts.push_back(parameter.IsIntercept() ? "(intercept)" : covariate);
        tests.push_back(std::move(texts));
    }
    return tests;
}

void AddModels(Json& results, const MABaseModel& model)
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
    results["Log10Sig"] = ToJson(model.GetLog10Sig());
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
    results["EstLog10Sig"] = ToJson(model.GetEstLog10Sig());
    results["EstCILower"] = ToJson(model.GetEstCILower());
    results["EstCIUpper"] = ToJson(model.GetEstCIUpper());
    results["PILower"] = ToJson(model.GetPILower());
    results["PIUpper"] = ToJson(model.GetPIUpper());
    results["Tau2Var"] = ToJson(model.GetTau2Var());
    results["Tau2CILower"] = ToJson(model.GetTau2CILower());
    results["Tau2CIUpper"] = ToJson(model.GetTau2CIUpper());
    results["Tau2Convergence"] = ToJson(model.GetTau2Convergence());
    results["Tau2Evaluations"] = ToJson(model.GetTau2Evaluations());
    results["LogLikelihood"] = ToJson(model.GetLogLikelihood());
    results["AIC"] = ToJson(model.GetAIC());
    results["BIC"] = ToJson(model.GetBIC());
    results["AICc"] = ToJson(model.GetAICc());
    results["PIProbability"] = ToJson(model.GetPIProbability());
    results["HomoTestChisquareQ"] = ToJson(model.GetHomoTestChisquareQ());
    results["HomoTestdf"] = ToJson(model.GetHomoTestdf());
    results["HomoTestSig"] = ToJson(model.GetHomoTestSig());
    results["HomoTestLog10Sig"] = ToJson(model.GetHomoTestLog10Sig());
    results["H2Index"] = ToJson(model.GetH2Index());
    results["H2CILower"] = ToJson(model.GetH2CILower());
    results["H2CIUpper"] = ToJson(model.GetH2CIUpper());
    results["I2Index"] = ToJson(model.GetI2Index());
    results["I2CILower"] = ToJson(model.GetI2CILower());
    results["I2CIUpper"] = ToJson(model.GetI2CIUpper());
    results["UniGroup"] = ToJson(model.GetUniGroup());
    results["GroupN"] = ToJson(model.GetGroupN());
    results["SubGroupStudyID"] = ToJson(model.GetSubGroupStudyID());
    results["GDQbVal"] = ToJson(model.GetGDQbVal());
    results["GDQbDf"] = ToJson(model.GetGDQbDf());
    results["GDQbSig"] = ToJson(model.GetGDQbSig());
    results["GDQbLog10Sig"] = ToJson(model.GetGDQbLog10Sig());
}

void AddContrastsAndCumulative(Json& results, const MABaseModel& model)
{
    results["ContrastEstES"] = ToJson(model.GetContrastEstES());
    results["ContrastEstStdError"] = ToJson(model.GetContrastEstStdError());
    results["ContrastEstZVal"] = ToJson(model.GetContrastEstZVal());
    results["ContrastEstSig"] = ToJson(model.GetContrastEstSig());
    results["ContrastLog10Sig"] = ToJson(model.GetContrastLog10Sig());
    results["ContrastEstCILower"] = ToJson(model.GetContrastEstCILower());
    results["ContrastEstCIUpper"] = ToJson(model.GetContrastEstCIUpper());
    results["ContrastStatus"] = ToJson(model.GetContrastStatus());
    results["Cumulative"] = ToJson(model.GetCumulative());
    results["EstCumulative"] = ToJson(model.GetEstCumulative());
    results["CumEstES"] = ToJson(model.GetCumEstES());
    results["CumEstStdErr"] = ToJson(model.GetCumEstStdErr());
    results["CumEstZval"] = ToJson(model.GetCumEstZval());
    results["CumEstSig"] = ToJson(model.GetCumEstSig());
    results["CumEstLog10Sig"] = ToJson(model.GetCumEstLog10Sig());
    results["CumEstCiLower"] = ToJson(model.GetCumEstCiLower());
    results["CumEstCiUpper"] = ToJson(model.GetCumEstCiUpper());
}

void AddTrimFill(Json& results, const MABaseModel& model)
{
    results["TFImputedN0"] = ToJson(model.GetTFImputedN0());
    results["TFImputedEffectSize"] = ToJson(model.GetTFImputedEffectSize());
    results["TFImputedStdError"] = ToJson(model.GetTFImputedStdError());
    results["OverallTFEffectSize"] = ToJson(model.GetOverallTFEffectSize());
    results["OverallTFStdError"] = ToJson(model.GetOverallTFStdError());
    results["OverallTFZVal"] = ToJson(model.GetOverallTFZVal());
    results["OverallTFSig"] = ToJson(model.GetOverallTFSig());
    results["OverallTFCILower"] = ToJson(model.GetOverallTFCILower());
    results["OverallTFCIUpper"] = ToJson(model.GetOverallTFCIUpper());
}

void AddSmallStudyTest(Json& results, const MABaseModel& model)
{
    results["RegTesType"] = ToJson(model.GetRegTesType());
    results["RegBasedTestCoef"] = ToJson(model.GetRegBasedTestCoef());
    results["RegBasedTestStdError"] = ToJson(model.GetRegBasedTestStdError());
    results["RegBasedTestVal"] = ToJson(model.GetRegBasedTestVal());
    results["GeRegBasedTestSig"] = ToJson(model.GeRegBasedTestSig());
    results["RegBasedTestLog10Sig"] = ToJson(model.GetRegBasedTestLog10Sig());
    results["RegBasedTestDf"] = ToJson(model.GetRegBasedTestDf());
    results["RegBasedTestCILower"] = ToJson(model.GetRegBasedTestCILower());
    results["RegBasedTestCIUpper"] = ToJson(model.GetRegBasedTestCIUpper());
    results["IfRegrTestPassFlag"] = ToJson(model.GetIfRegrTestPassFlag());
    results["RegrTestCoefficient"] = ToJson(model.GetRegrTestCoefficient());
    results["RegrTestBetaStandErr"] = ToJson(model.GetRegrTestBetaStandErr());
    results["RegrBetaTestVal"] = ToJson(model.GetRegrBetaTestVal());
    results["RegrBetaTestPValue"] = ToJson(model.GetRegrBetaTestPValue());
    results["RegrBetaConfInterValLower"] = ToJson(model.GetRegrBetaConfInterValLower());
    results["RegrBetaConfInterValUpper"] = ToJson(model.GetRegrBetaConfInterValUpper());
    results["RegrCoefParameters"] = TestParameters(model);
    results["RegrCoefRedundancyInfo"] = ToJson(model.GetRegrCoefRedundancyInfo());
}

void AddPlots(Json& results, const MABaseModel& model)
{
    results["FunnelX"] = ToJson(model.GetFunnelX());
    results["FunnelY"] = ToJson(model.GetFunnelY());
    results["FunnelCIX"] = ToJson(model.GetFunnelCIX());
    results["FunnelCIY"] = ToJson(model.GetFunnelCIY());
    results["FunnelContourX"] = ToJson(model.GetFunnelContourX());
    results["FunnelContourY"] = ToJson(model.GetFunnelContourY());
    results["GalbPlotX"] = ToJson(model.GetGalbPlotX());
    results["GalbPlotY"] = ToJson(model.GetGalbPlotY());
    results["GalbRegrSlope"] = ToJson(model.GetGalbRegrSlope());
    results["GalbRegrIntercept"] = ToJson(model.GetGalbRegrIntercept());
    results["BubbleFlags"] = ToJson(model.GetBubbleFlags());
    results["BubbleCoefs"] = ToJson(model.GetBubbleCoefs());
    results["BubbleXs"] = ToJson(model.GetBubbleXs());
    results["BubblePredVals"] = ToJson(model.GetBubblePredVals());
    results["BubbleW"] = ToJson(model.GetBubbleW());
    results["BubbleCILower"] = ToJson(model.GetBubbleCILower());
    results["BubbleCIUpper"] = ToJson(model.GetBubbleCIUpper());
    results["BubbleCICurveX"] = ToJson(model.GetBubbleCICurveX());
    results["BubbleCICurveLower"] = ToJson(model.GetBubbleCICurveLower());
    results["BubbleCICurveUpper"] = ToJson(model.GetBubbleCICurveUpper());
}

void AddOwnResults(Json& results, const MABinModel& model)
{
    results["ESType"] = ToJson(model.GetESType());
    results["NZeroCorrected"] = ToJson(model.GetNZeroCorrected());
    results["NUninformative"] = ToJson(model.GetNUninformative());
    results["NPoolCorrected"] = ToJson(model.GetNPoolCorrected());
    results["CumNPoolCorrected"] = ToJson(model.GetCumNPoolCorrected());
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
    results["ContrastExpEstES"] = ToJson(model.GetContrastExpEstES());
    results["ContrastExpEstCILower"] = ToJson(model.GetContrastExpEstCILower());
    results["ContrastExpEstCIUpper"] = ToJson(model.GetContrastExpEstCIUpper());
    results["CumExpEstES"] = ToJson(model.GetCumExpEstES());
    results["CumExpEstCiLower"] = ToJson(model.GetCumExpEstCiLower());
    results["CumExpEstCiUpper"] = ToJson(model.GetCumExpEstCiUpper());
    results["OverallTFExpEffectSize"] = ToJson(model.GetOverallTFExpEffectSize());
    results["OverallTFExpCILower"] = ToJson(model.GetOverallTFExpCILower());
    results["OverallTFExpCIUpper"] = ToJson(model.GetOverallTFExpCIUpper());
    results["LabbePlotX"] = ToJson(model.GetLabbePlotX());
    results["LabbePlotY"] = ToJson(model.GetLabbePlotY());
    results["LabbePlotW"] = ToJson(model.GetLabbePlotW());
}

void AddOwnResults(Json& results, const MAContModel& model)
{
    results["ESType"] = ToJson(model.GetESType());
}

} // namespace

Json ResultsOf(const Analysis& analysis)
{
    Json results;
    const MABaseModel& base = analysis.Base();
    AddModels(results, base);
    AddContrastsAndCumulative(results, base);
    results["TRimFillSide"] = ToJson(analysis.trimmedSide);
    AddTrimFill(results, base);
    AddSmallStudyTest(results, base);
    AddPlots(results, base);
    std::visit([&results](const auto& model) { AddOwnResults(results, model); }, analysis.model);
    return results;
}

} // namespace host
