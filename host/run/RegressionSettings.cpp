#include "host/run/RegressionSettings.h"

#include "host/text/Tau2Estimators.h"

using namespace MA_NAMESPACE;

namespace host {

MARegSettings RegressionSettings(const MAModelSettings& settings)
{
    const MAConst::KNAPPHADJTYPE adjustment = settings.GetKnapHartAdjustType();
    MARegSettings regression;
    regression.SetInterceptUse(true);
    regression.SetEstTauType(EstimatorOf(settings.GetEstTauType()).regressionCode);
    regression.SetTau2Search(settings.GetTau2Search());
    regression.SetKnapHartAdjust(adjustment != MAConst::KNAPP_HARTUNG_NONE);
    regression.SetTruncAjustValue(adjustment == MAConst::KNAPP_HARTUNG_TRUNCATED);
    regression.SetConfidenceLevel(settings.GetCILevel());
    regression.SetParameterTolerance(settings.GetConnvergenceTol());
    regression.SetMaxIterations(settings.GetMaxIter());
    regression.SetMaxStepHalvingValue(settings.GetMaxStepHalving());
    return regression;
}

MARegSettings SmallStudyTestSettings(const MAModelSettings& settings)
{
    MARegSettings test = RegressionSettings(settings);
    test.SetInterceptUse(settings.GetIsUseIntercept());
    test.SetMultiDiser(settings.GetMultiDisper());
    test.SetTreatmentSuccess(settings.GetTreatmentSuccessVarIndex());
    test.SetTreatmentFailure(settings.GetTreatmentFailureVarIndex());
    test.SetControlSuccess(settings.GetControlSuccessVarIndex());
    test.SetControlFailure(settings.GetControlFailureVarIndex());
    return test;
}

} // namespace host
