#include "meta_analysis/settings/RegressionSettingsOf.h"

#include "meta_analysis/settings/MAEstimators.h"

namespace MA_NAMESPACE {

MARegSettings RegressionSettingsOf(const MAModelSettings& settings)
{
    const MAConst::KNAPPHADJTYPE adjustment = settings.GetKnapHartAdjustType();
    const MAConst::TAU2ESTIMATOR estimator = settings.GetEstTauType();
    MARegSettings regression;
    regression.SetInterceptUse(true);
    if (IsEstimator(estimator))
        regression.SetEstTauType(allEstimators[estimator].code);
    regression.SetTau2Search(settings.GetTau2Search());
    regression.SetKnapHartAdjust(adjustment != MAConst::KNAPP_HARTUNG_NONE);
    regression.SetTruncAjustValue(adjustment == MAConst::KNAPP_HARTUNG_TRUNCATED);
    regression.SetKnapHartIfHeterogeneous(adjustment == MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS);
    regression.SetConfidenceLevel(settings.GetCILevel());
    regression.SetParameterTolerance(settings.GetConnvergenceTol());
    regression.SetMaxIterations(settings.GetMaxIter());
    regression.SetMaxStepHalvingValue(settings.GetMaxStepHalving());
    return regression;
}

MARegSettings SmallStudyTestSettingsOf(const MAModelSettings& settings)
{
    MARegSettings test = RegressionSettingsOf(settings);
    test.SetInterceptUse(settings.GetIsUseIntercept());
    test.SetMultiDiser(settings.GetMultiDisper());
    test.SetTreatmentSuccess(settings.GetTreatmentSuccessVarIndex());
    test.SetTreatmentFailure(settings.GetTreatmentFailureVarIndex());
    test.SetControlSuccess(settings.GetControlSuccessVarIndex());
    test.SetControlFailure(settings.GetControlFailureVarIndex());
    test.SetTreatmentN(settings.GetTreatmentNVarIndex());
    test.SetControlN(settings.GetControlNVarIndex());
    return test;
}

MARegSettings ComputationSettingsOf(const MARegSettings& settings)
{
    MARegSettings computation;
    computation.SetInterceptUse(settings.GetInterceptUse());
    computation.SetComputationalTolerance(settings.GetComputationalTolerance());
    computation.SetConfidenceLevel(settings.GetConfidenceLevel());
    computation.SetCancelObject(settings.GetCancelObject());
    computation.SetParameterTolerance(settings.GetParameterTolerance());
    computation.SetMaxIterations(settings.GetMaxIterations());
    computation.SetMaxStepHalvingValue(settings.GetMaxStepHalvingValue());
    computation.SetMultiDiser(settings.HasMultiDisper());
    computation.SetEstTauType(settings.GetEstTauType());
    computation.SetTau2Search(settings.GetTau2Search());
    computation.SetKnapHartAdjust(settings.IsKnapHartAdjust());
    computation.SetTruncAjustValue(settings.IsTruncAjustValue());
    computation.SetKnapHartIfHeterogeneous(settings.IsKnapHartIfHeterogeneous());
    computation.SetTestDistType(settings.GetTestDistType());
    return computation;
}

bool AddCovariateEffect(MARegSettings& settings, int variable)
{
    KXModelEffect effect;
    return effect.AddCovariate(variable) && settings.AddCovariate(variable) != -1 &&
           settings.AddModelEffect(effect);
}

} // namespace MA_NAMESPACE
