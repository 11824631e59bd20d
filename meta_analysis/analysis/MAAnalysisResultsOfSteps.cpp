// Getters of the further analyses: subgroups, contrasts, cumulative analysis, leave-one-out, influence,
// trim-and-fill and small-study tests.

#include "meta_analysis/analysis/MAAnalysisResults.h"
#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MAResultColumns.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

std::vector<double> MAAnalysisResults::GetUniGroup() const
{
    return CopyOf(Results().groups.shownValues);
}

std::vector<int> MAAnalysisResults::GetGroupN() const
{
    return CopyOf(Results().lists.groupSizes);
}

std::vector<std::vector<int>> MAAnalysisResults::GetSubGroupStudyID() const
{
    return CopyOf(Results().lists.recordNumbers);
}

double MAAnalysisResults::GetGDQbVal() const
{
    return Results().groups.between.q;
}

int MAAnalysisResults::GetGDQbDf() const
{
    return Results().groups.between.df;
}

double MAAnalysisResults::GetGDQbSig() const
{
    return Results().groups.between.pValue.value;
}

double MAAnalysisResults::GetGDQbLog10Sig() const
{
    return Results().groups.between.pValue.Log10();
}

std::vector<double> MAAnalysisResults::GetContrastEstES() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::estimate));
}

std::vector<double> MAAnalysisResults::GetContrastEstStdError() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::stdError));
}

std::vector<double> MAAnalysisResults::GetContrastEstZVal() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::statistic));
}

std::vector<double> MAAnalysisResults::GetContrastEstSig() const
{
    return PValuesOf(Results().contrasts, &MAContrast::effect, &MAPValue::value);
}

std::vector<double> MAAnalysisResults::GetContrastLog10Sig() const
{
    return PValuesOf(Results().contrasts, &MAContrast::effect, &MAPValue::Log10);
}

std::vector<double> MAAnalysisResults::GetContrastEstCILower() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::ciLower));
}

std::vector<double> MAAnalysisResults::GetContrastEstCIUpper() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::ciUpper));
}

std::vector<int> MAAnalysisResults::GetContrastStatus() const
{
    return CopyOf(Results().contrastStatus);
}

std::vector<double> MAAnalysisResults::GetCumulative() const
{
    return CopyOf(Results().studies.cumulativeValue);
}

std::vector<std::vector<double>> MAAnalysisResults::GetEstCumulative() const
{
    return CopyOf(Results().cumulative.values);
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstES() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::estimate));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstStdErr() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::stdError));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstZval() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::statistic));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstSig() const
{
    return CumulativeColumn(Results().cumulative, PValueForm(&MAPooledRow::effect, &MAPValue::value));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstLog10Sig() const
{
    return CumulativeColumn(Results().cumulative, PValueForm(&MAPooledRow::effect, &MAPValue::Log10));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstCiLower() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::ciLower));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstCiUpper() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::ciUpper));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutEffectSize() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::estimate));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutStdError() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::stdError));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutZVal() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::statistic));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutSig() const
{
    return PValuesOf(Results().leaveOneOut, &MAPooledModel::effect, &MAPValue::value);
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutCILower() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::ciLower));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutCIUpper() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::ciUpper));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutTau2Var() const
{
    return FieldOf(Results().leaveOneOut, &MAPooledModel::tau2);
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutChisquareQ() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::homogeneity, &MAHomogeneityTest::q));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutI2Index() const
{
    return FieldOf(Results().leaveOneOut,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::i2));
}

std::vector<double> MAAnalysisResults::GetInfluenceStudentizedResidual() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::residual);
}

std::vector<double> MAAnalysisResults::GetInfluenceDFFITS() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::dffits);
}

std::vector<double> MAAnalysisResults::GetInfluenceCookDistance() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::cookDistance);
}

std::vector<double> MAAnalysisResults::GetInfluenceCovarianceRatio() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::covarianceRatio);
}

std::vector<double> MAAnalysisResults::GetInfluenceTau2Deleted() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::tau2Deleted);
}

std::vector<double> MAAnalysisResults::GetInfluenceQDeleted() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::qDeleted);
}

std::vector<double> MAAnalysisResults::GetInfluenceHat() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::hat);
}

std::vector<double> MAAnalysisResults::GetInfluenceWeight() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::weight);
}

std::vector<double> MAAnalysisResults::GetBaujatX() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::baujatX);
}

std::vector<double> MAAnalysisResults::GetBaujatY() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::baujatY);
}

std::vector<int> MAAnalysisResults::GetInfluenceRules() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::rules);
}

std::vector<double> MAAnalysisResults::GetInfluenceCutoffs() const
{
    return CopyOf(Results().influence.cutoffs);
}

int MAAnalysisResults::GetTFImputedN0() const
{
    return Results().trimFill.imputedCount;
}

std::vector<double> MAAnalysisResults::GetTFImputedEffectSize() const
{
    return CopyOf(Results().trimFill.imputed.effectSize);
}

std::vector<double> MAAnalysisResults::GetTFImputedStdError() const
{
    return CopyOf(Results().trimFill.imputed.stdError);
}

double MAAnalysisResults::GetOverallTFEffectSize() const
{
    return Results().trimFill.model.value_or(MAEstimate()).estimate;
}

double MAAnalysisResults::GetOverallTFStdError() const
{
    return Results().trimFill.model.value_or(MAEstimate()).stdError;
}

double MAAnalysisResults::GetOverallTFZVal() const
{
    return Results().trimFill.model.value_or(MAEstimate()).statistic;
}

double MAAnalysisResults::GetOverallTFSig() const
{
    return Results().trimFill.model.value_or(MAEstimate()).pValue.value;
}

double MAAnalysisResults::GetOverallTFCILower() const
{
    return Results().trimFill.model.value_or(MAEstimate()).ciLower;
}

double MAAnalysisResults::GetOverallTFCIUpper() const
{
    return Results().trimFill.model.value_or(MAEstimate()).ciUpper;
}

MAConst::RegBaseTestType MAAnalysisResults::GetRegTesType() const
{
    return settings_->GetRegBaseTestType();
}

double MAAnalysisResults::GetRegBasedTestCoef() const
{
    return Results().runTest.effect.estimate;
}

double MAAnalysisResults::GetRegBasedTestStdError() const
{
    return Results().runTest.effect.stdError;
}

double MAAnalysisResults::GetRegBasedTestVal() const
{
    return Results().runTest.effect.statistic;
}

double MAAnalysisResults::GeRegBasedTestSig() const
{
    return Results().runTest.effect.pValue.value;
}

double MAAnalysisResults::GetRegBasedTestLog10Sig() const
{
    return Results().runTest.effect.pValue.Log10();
}

double MAAnalysisResults::GetRegBasedTestDf() const
{
    return Results().runTest.df;
}

double MAAnalysisResults::GetRegBasedTestCILower() const
{
    return Results().runTest.effect.ciLower;
}

double MAAnalysisResults::GetRegBasedTestCIUpper() const
{
    return Results().runTest.effect.ciUpper;
}

std::vector<int> MAAnalysisResults::GetIfRegrTestPassFlag() const
{
    return FieldOf(Results().tests, [](const MASmallStudyTest& test) { return test.hasPassed ? 1 : 0; });
}

std::vector<std::vector<double>> MAAnalysisResults::GetRegrTestCoefficient() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::coefficients);
}

std::vector<std::vector<double>> MAAnalysisResults::GetRegrTestBetaStandErr() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::stdErrors);
}

std::vector<std::vector<double>> MAAnalysisResults::GetRegrBetaTestVal() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::statistics);
}

std::vector<std::vector<double>> MAAnalysisResults::GetRegrBetaTestPValue() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::pValues);
}

std::vector<std::vector<double>> MAAnalysisResults::GetRegrBetaConfInterValLower() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::lowerLimits);
}

std::vector<std::vector<double>> MAAnalysisResults::GetRegrBetaConfInterValUpper() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::upperLimits);
}

std::vector<std::vector<KXRegrParameter>> MAAnalysisResults::GetRegrCoefParameters() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::parameters);
}

std::vector<KXBitSet> MAAnalysisResults::GetRegrCoefRedundancyInfo() const
{
    return FieldOf(Results().tests, &MASmallStudyTest::nonRedundant);
}

} // namespace MA_NAMESPACE
