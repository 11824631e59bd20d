#include "host/run/RegressionSettings.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

const char* CodeOf(MAConst::TAU2ESTIMATOR estimator)
{
    switch (estimator) {
    case MAConst::TAU2_HE:
        return "HE";
    case MAConst::TAU2_HS:
        return "HS";
    case MAConst::TAU2_DL:
        return "DL";
    case MAConst::TAU2_SJ:
        return "SJ";
    case MAConst::TAU2_ML:
        return "ML";
    case MAConst::TAU2_REML:
        return "REML";
    case MAConst::TAU2_EB:
        return "EB";
    }
    return "";
}

} // namespace

MARegSettings RegressionSettings(const MAModelSettings& settings)
{
    const MAConst::KNAPPHADJTYPE adjustment = settings.GetKnapHartAdjustType();
    MARegSettings regression;
    regression.SetInterceptUse(true);
    regression.SetEstTauType(CodeOf(settings.GetEstTauType()));
    regression.SetTau2Search(settings.GetTau2Search());
    regression.SetKnapHartAdjust(adjustment != MAConst::KNAPP_HARTUNG_NONE);
    regression.SetTruncAjustValue(adjustment == MAConst::KNAPP_HARTUNG_TRUNCATED);
    regression.SetConfidenceLevel(settings.GetCILevel());
    regression.SetParameterTolerance(settings.GetConnvergenceTol());
    regression.SetMaxIterations(settings.GetMaxIter());
    regression.SetMaxStepHalvingValue(settings.GetMaxStepHalving());
    return regression;
}

} // namespace host
