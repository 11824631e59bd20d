#include "meta_analysis/regression/MARegOutputStats.h"
#include "meta_analysis/regression/MARegResults.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

namespace {

double Log10Of(const MAModelTest& test)
{
    return test.pValue.Log10();
}

} // namespace

std::vector<double> MARegOutputStats::GetHypothesisEstimate() const
{
    return CopyOf(Get().hypotheses.estimates);
}

std::vector<double> MARegOutputStats::GetHypothesisStdError() const
{
    return CopyOf(Get().hypotheses.stdErrors);
}

std::vector<double> MARegOutputStats::GetHypothesisVal() const
{
    return CopyOf(Get().hypotheses.statistics);
}

std::vector<double> MARegOutputStats::GetHypothesisSig() const
{
    return FieldOf(Get().hypotheses.pValues, &MAPValue::value);
}

std::vector<double> MARegOutputStats::GetHypothesisLog10Sig() const
{
    return FieldOf(Get().hypotheses.pValues, &MAPValue::Log10);
}

double MARegOutputStats::GetHypothesisJointVal() const
{
    return Get().hypotheses.joint.statistic;
}

double MARegOutputStats::GetHypothesisJointSig() const
{
    return Get().hypotheses.joint.pValue.value;
}

double MARegOutputStats::GetHypothesisJointLog10Sig() const
{
    return Log10Of(Get().hypotheses.joint);
}

int MARegOutputStats::GetHypothesisJointDf() const
{
    return Get().hypotheses.joint.df1;
}

int MARegOutputStats::GetHypothesisJointDf2() const
{
    return Get().hypotheses.joint.df2;
}

std::vector<double> MARegOutputStats::GetEffectTestVal() const
{
    return FieldOf(Get().effectTests, &MAModelTest::statistic);
}

std::vector<double> MARegOutputStats::GetEffectTestSig() const
{
    return FieldOf(Get().effectTests, [](const MAModelTest& test) { return test.pValue.value; });
}

std::vector<double> MARegOutputStats::GetEffectTestLog10Sig() const
{
    return FieldOf(Get().effectTests, Log10Of);
}

std::vector<int> MARegOutputStats::GetEffectTestDf() const
{
    return FieldOf(Get().effectTests, &MAModelTest::df1);
}

std::vector<int> MARegOutputStats::GetEffectTestDf2() const
{
    return FieldOf(Get().effectTests, &MAModelTest::df2);
}

std::vector<double> MARegOutputStats::GetVarianceInflation() const
{
    return CopyOf(Get().varianceInflation);
}

std::vector<double> MARegOutputStats::GetPredictedEffect() const
{
    return FieldOf(Get().predictions, &MAPredictedEffect::effect);
}

std::vector<double> MARegOutputStats::GetPredictedStdError() const
{
    return FieldOf(Get().predictions, &MAPredictedEffect::stdError);
}

std::vector<double> MARegOutputStats::GetPredictedCILower() const
{
    return FieldOf(Get().predictions, &MAPredictedEffect::ciLower);
}

std::vector<double> MARegOutputStats::GetPredictedCIUpper() const
{
    return FieldOf(Get().predictions, &MAPredictedEffect::ciUpper);
}

std::vector<double> MARegOutputStats::GetPredictedPILower() const
{
    return FieldOf(Get().predictions, &MAPredictedEffect::piLower);
}

std::vector<double> MARegOutputStats::GetPredictedPIUpper() const
{
    return FieldOf(Get().predictions, &MAPredictedEffect::piUpper);
}

} // namespace MA_NAMESPACE
