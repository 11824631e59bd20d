#include "host/report/AnalysisResults.h"

#include "host/report/InfluenceResults.h"
#include "host/report/Tau2Results.h"
#include "host/text/JsonValue.h"
#include "host/text/SmallStudyTests.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Json = nlohmann::ordered_json;

/// The parameters of the small-study tests as texts.
Json TestParameters(const MABaseModel& model)
{
    const std::string covariate = RowOf(SMALL_STUDY_TESTS, model.GetRegTesType()).covariate;
    Json tests = Json::array();
    for (const std::vector<KXRegrParameter>& parameters : model.GetRegrCoefParameters()) {
        Json texts = Json::array();
        for (const KXRegrParameter& parameter : parameters)
            texts.push_back(parameter.IsIntercept() ? "(intercept)" : covariate);
        tests.push_back(std::move(texts));
    }
    return tests;
}

/// Adds what the getter Get<name> returns, under its name. A macro, so that key and getter are one word.
#define ADD_RESULT(name) results[#name] = ToJson(model.Get##name())

void AddRun(Json& results, const MABaseModel& model)
{
    ADD_RESULT(ModelType);
    ADD_RESULT(WeightType);
    ADD_RESULT(InputESType);
    ADD_RESULT(NMissing);
    ADD_RESULT(NInvalid);
    ADD_RESULT(NDropped);
    ADD_RESULT(Warnings);
    ADD_RESULT(ExcludedRecord);
    ADD_RESULT(ExclusionReason);
    ADD_RESULT(AsymmetricIntervalStudyID);
    ADD_RESULT(SkewedStudyID);
    ADD_RESULT(DoubtfulStdDevStudyID);
}

void AddStudies(Json& results, const MABaseModel& model)
{
    ADD_RESULT(EffectSize);
    ADD_RESULT(Variance);
    ADD_RESULT(StdError);
    ADD_RESULT(ZVal);
    ADD_RESULT(Sig);
    ADD_RESULT(Log10Sig);
    ADD_RESULT(CILower);
    ADD_RESULT(CIUpper);
    ADD_RESULT(SampSize);
    ADD_RESULT(Weight);
    ADD_RESULT(NormalizedWeight);
    ADD_RESULT(NonMissingStudyID);
    ADD_RESULT(EffectConversion);
    ADD_RESULT(TreatmentConversion);
    ADD_RESULT(ControlConversion);
}

void AddModels(Json& results, const MABaseModel& model)
{
    ADD_RESULT(EstEffectSize);
    ADD_RESULT(EstStdError);
    ADD_RESULT(EstZVal);
    ADD_RESULT(EstSig);
    ADD_RESULT(EstLog10Sig);
    ADD_RESULT(EstDf);
    ADD_RESULT(EstCILower);
    ADD_RESULT(EstCIUpper);
    ADD_RESULT(PILower);
    ADD_RESULT(PIUpper);
    ADD_RESULT(Tau2Var);
    AddTau2(results, model);
    ADD_RESULT(PIProbability);
}

void AddHeterogeneity(Json& results, const MABaseModel& model)
{
    ADD_RESULT(HomoTestChisquareQ);
    ADD_RESULT(HomoTestdf);
    ADD_RESULT(HomoTestSig);
    ADD_RESULT(HomoTestLog10Sig);
    ADD_RESULT(H2Index);
    ADD_RESULT(H2CILower);
    ADD_RESULT(H2CIUpper);
    ADD_RESULT(I2Index);
    ADD_RESULT(I2CILower);
    ADD_RESULT(I2CIUpper);
}

void AddGroups(Json& results, const MABaseModel& model)
{
    ADD_RESULT(UniGroup);
    ADD_RESULT(GroupN);
    ADD_RESULT(SubGroupStudyID);
    ADD_RESULT(SubgroupMissing);
    ADD_RESULT(GDQbVal);
    ADD_RESULT(GDQbDf);
    ADD_RESULT(GDQbSig);
    ADD_RESULT(GDQbLog10Sig);
    ADD_RESULT(GDQbF);
    ADD_RESULT(GDQbFDf1);
    ADD_RESULT(GDQbFDf2);
    ADD_RESULT(GDQbFSig);
    ADD_RESULT(GDQbFLog10Sig);
}

void AddContrastsAndCumulative(Json& results, const MABaseModel& model)
{
    ADD_RESULT(ContrastEstES);
    ADD_RESULT(ContrastEstStdError);
    ADD_RESULT(ContrastEstZVal);
    ADD_RESULT(ContrastEstSig);
    ADD_RESULT(ContrastLog10Sig);
    ADD_RESULT(ContrastEstCILower);
    ADD_RESULT(ContrastEstCIUpper);
    ADD_RESULT(ContrastStatus);
    ADD_RESULT(ContrastMissing);
    ADD_RESULT(Cumulative);
    ADD_RESULT(CumulativeMissing);
    ADD_RESULT(EstCumulative);
    ADD_RESULT(CumEstES);
    ADD_RESULT(CumEstStdErr);
    ADD_RESULT(CumEstZval);
    ADD_RESULT(CumEstSig);
    ADD_RESULT(CumEstLog10Sig);
    ADD_RESULT(CumEstCiLower);
    ADD_RESULT(CumEstCiUpper);
}

void AddLeaveOneOut(Json& results, const MABaseModel& model)
{
    ADD_RESULT(LeaveOneOutEffectSize);
    ADD_RESULT(LeaveOneOutStdError);
    ADD_RESULT(LeaveOneOutZVal);
    ADD_RESULT(LeaveOneOutSig);
    ADD_RESULT(LeaveOneOutCILower);
    ADD_RESULT(LeaveOneOutCIUpper);
    ADD_RESULT(LeaveOneOutTau2Var);
    ADD_RESULT(LeaveOneOutChisquareQ);
    ADD_RESULT(LeaveOneOutI2Index);
}

void AddTrimFill(Json& results, const MABaseModel& model)
{
    ADD_RESULT(TFImputedN0);
    ADD_RESULT(TFImputedEffectSize);
    ADD_RESULT(TFImputedStdError);
    ADD_RESULT(OverallTFEffectSize);
    ADD_RESULT(OverallTFStdError);
    ADD_RESULT(OverallTFZVal);
    ADD_RESULT(OverallTFSig);
    ADD_RESULT(OverallTFCILower);
    ADD_RESULT(OverallTFCIUpper);
}

void AddSmallStudyTest(Json& results, const MABaseModel& model)
{
    ADD_RESULT(RegTesType);
    ADD_RESULT(RegBasedTestCoef);
    ADD_RESULT(RegBasedTestStdError);
    ADD_RESULT(RegBasedTestVal);
    results["GeRegBasedTestSig"] = ToJson(model.GeRegBasedTestSig());
    ADD_RESULT(RegBasedTestLog10Sig);
    ADD_RESULT(RegBasedTestDf);
    ADD_RESULT(RegBasedTestCILower);
    ADD_RESULT(RegBasedTestCIUpper);
    ADD_RESULT(RegBasedTestLimit);
    ADD_RESULT(RegBasedTestLimitCILower);
    ADD_RESULT(RegBasedTestLimitCIUpper);
    ADD_RESULT(RankTestTau);
    ADD_RESULT(RankTestSig);
    ADD_RESULT(RankTestExactSig);
    ADD_RESULT(IfRegrTestPassFlag);
    ADD_RESULT(RegrTestCoefficient);
    ADD_RESULT(RegrTestBetaStandErr);
    ADD_RESULT(RegrBetaTestVal);
    ADD_RESULT(RegrBetaTestPValue);
    ADD_RESULT(RegrBetaConfInterValLower);
    ADD_RESULT(RegrBetaConfInterValUpper);
    results["RegrCoefParameters"] = TestParameters(model);
    ADD_RESULT(RegrCoefRedundancyInfo);
}

void AddPlots(Json& results, const MABaseModel& model)
{
    ADD_RESULT(FunnelX);
    ADD_RESULT(FunnelY);
    ADD_RESULT(FunnelCIX);
    ADD_RESULT(FunnelCIY);
    ADD_RESULT(FunnelContourX);
    ADD_RESULT(FunnelContourY);
    ADD_RESULT(GalbPlotX);
    ADD_RESULT(GalbPlotY);
    ADD_RESULT(GalbRegrSlope);
    ADD_RESULT(GalbRegrIntercept);
    ADD_RESULT(BubbleFlags);
    ADD_RESULT(BubbleMissing);
    ADD_RESULT(BubbleCoefs);
    ADD_RESULT(BubbleXs);
    ADD_RESULT(BubblePredVals);
    ADD_RESULT(BubbleW);
    ADD_RESULT(BubbleCILower);
    ADD_RESULT(BubbleCIUpper);
    ADD_RESULT(BubbleCICurveX);
    ADD_RESULT(BubbleCICurveLower);
    ADD_RESULT(BubbleCICurveUpper);
    ADD_RESULT(BubblePICurveLower);
    ADD_RESULT(BubblePICurveUpper);
    ADD_RESULT(BubbleSlopeStdError);
    ADD_RESULT(BubbleSlopeVal);
    ADD_RESULT(BubbleSlopeSig);
    ADD_RESULT(BubbleSlopeCILower);
    ADD_RESULT(BubbleSlopeCIUpper);
}

void AddOwnResults(Json& results, const MABinModel& model)
{
    ADD_RESULT(ESType);
    ADD_RESULT(NZeroCorrected);
    ADD_RESULT(NUninformative);
    ADD_RESULT(NPoolCorrected);
    ADD_RESULT(CumNPoolCorrected);
    ADD_RESULT(ExpEffectSize);
    ADD_RESULT(ExpVariance);
    ADD_RESULT(ExpStdError);
    ADD_RESULT(ExpCILower);
    ADD_RESULT(ExpCIUpper);
    ADD_RESULT(EstExpEffectSize);
    ADD_RESULT(EstExpCILower);
    ADD_RESULT(EstExpCIUpper);
    ADD_RESULT(ExpPILower);
    ADD_RESULT(ExpPIUpper);
    ADD_RESULT(ContrastExpEstES);
    ADD_RESULT(ContrastExpEstCILower);
    ADD_RESULT(ContrastExpEstCIUpper);
    ADD_RESULT(CumExpEstES);
    ADD_RESULT(CumExpEstCiLower);
    ADD_RESULT(CumExpEstCiUpper);
    ADD_RESULT(LeaveOneOutExpEffectSize);
    ADD_RESULT(LeaveOneOutExpCILower);
    ADD_RESULT(LeaveOneOutExpCIUpper);
    ADD_RESULT(OverallTFExpEffectSize);
    ADD_RESULT(OverallTFExpCILower);
    ADD_RESULT(OverallTFExpCIUpper);
    ADD_RESULT(RegBasedTestExpLimit);
    ADD_RESULT(RegBasedTestExpLimitCILower);
    ADD_RESULT(RegBasedTestExpLimitCIUpper);
    ADD_RESULT(LabbePlotX);
    ADD_RESULT(LabbePlotY);
    ADD_RESULT(LabbePlotW);
}

void AddOwnResults(Json& results, const MAContModel& model)
{
    ADD_RESULT(ESType);
}

void AddOwnResults(Json& results, const MAOutcomeModel& model)
{
    ADD_RESULT(ESType);
    ADD_RESULT(NZeroCorrected);
    ADD_RESULT(NUninformative);
    ADD_RESULT(NPoolCorrected);
    ADD_RESULT(CumNPoolCorrected);
    ADD_RESULT(NaturalEffectSize);
    ADD_RESULT(NaturalCILower);
    ADD_RESULT(NaturalCIUpper);
    ADD_RESULT(NaturalEstEffectSize);
    ADD_RESULT(NaturalEstCILower);
    ADD_RESULT(NaturalEstCIUpper);
    ADD_RESULT(NaturalPILower);
    ADD_RESULT(NaturalPIUpper);
    ADD_RESULT(CumNaturalEstES);
    ADD_RESULT(CumNaturalEstCiLower);
    ADD_RESULT(CumNaturalEstCiUpper);
    ADD_RESULT(LeaveOneOutNaturalEffectSize);
    ADD_RESULT(LeaveOneOutNaturalCILower);
    ADD_RESULT(LeaveOneOutNaturalCIUpper);
    ADD_RESULT(OverallTFNaturalEffectSize);
    ADD_RESULT(OverallTFNaturalCILower);
    ADD_RESULT(OverallTFNaturalCIUpper);
}

} // namespace

Json ResultsOf(const Analysis& analysis)
{
    Json results;
    const MABaseModel& base = analysis.Base();
    AddRun(results, base);
    AddStudies(results, base);
    AddModels(results, base);
    AddHeterogeneity(results, base);
    AddGroups(results, base);
    AddContrastsAndCumulative(results, base);
    AddLeaveOneOut(results, base);
    AddInfluence(results, base);
    results["TRimFillSide"] = ToJson(analysis.trimmedSide);
    AddTrimFill(results, base);
    AddSmallStudyTest(results, base);
    AddPlots(results, base);
    std::visit([&results](const auto& model) { AddOwnResults(results, model); }, analysis.model);
    return results;
}

#undef ADD_RESULT

} // namespace host
