// Getters of the small-study tests.

#include "meta_analysis/analysis/MAAnalysisResults.h"
#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MAResultColumns.h"

namespace MA_NAMESPACE {

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

double MAAnalysisResults::GetRegBasedTestLimit() const
{
    return Results().runTest.limit.estimate;
}

double MAAnalysisResults::GetRegBasedTestLimitCILower() const
{
    return Results().runTest.limit.ciLower;
}

double MAAnalysisResults::GetRegBasedTestLimitCIUpper() const
{
    return Results().runTest.limit.ciUpper;
}

double MAAnalysisResults::GetRankTestTau() const
{
    return Results().rankTest.tau;
}

double MAAnalysisResults::GetRankTestSig() const
{
    return Results().rankTest.pValue;
}

double MAAnalysisResults::GetRankTestExactSig() const
{
    return Results().rankTest.exactPValue;
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
