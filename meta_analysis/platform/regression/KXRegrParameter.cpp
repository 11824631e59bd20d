#include "meta_analysis/platform/regression/KXRegrParameter.h"

void KXRegrParameter::SetupFromEffect(const KXModelEffect& modelEffect, int effect, int depCategory)
{
    KXModelEffect copy = modelEffect;
    effect_ = std::move(copy);
    effectNumber_ = effect;
    dependentCategory_ = depCategory;
    categories_.clear();
}
