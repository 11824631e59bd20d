#include "host/batch/BatchModel.h"

#include "host/text/Wording.h"

using namespace MA_NAMESPACE;

namespace host {

MABulkModel BatchModelOf(const MAModelSettings& settings)
{
    const double alpha = AlphaOf(settings);
    if (!IsRandom(settings))
        return MAFixedEffectChoice{settings.GetNullHypothesis(), alpha};
    MARandomEffectsChoice random;
    random.estimator = settings.GetEstTauType();
    random.knappHartung = settings.GetKnapHartAdjustType();
    random.limits = {settings.GetMaxIter(), settings.GetMaxStepHalving(), settings.GetConnvergenceTol()};
    random.search = settings.GetTau2Search();
    random.tau2Interval = settings.GetTau2Interval();
    random.prediction = settings.GetPrediction();
    random.alpha = alpha;
    return random;
}

} // namespace host
