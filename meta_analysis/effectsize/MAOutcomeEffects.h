#pragma once

#include "meta_analysis/effectsize/MAOneGroup.h"
#include "meta_analysis/effectsize/MARates.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// Calls `use` with the type of the measure; does nothing for a value outside the enumeration.
template <class Use>
void WithOutcomeMeasure(MAConst::OUTCOMEMEASURE type, Use&& use)
{
    switch (type) {
    case MAConst::PROPORTION_LOGIT:
        return use(MALogitProportion());
    case MAConst::PROPORTION_FREEMAN_TUKEY:
        return use(MAFreemanTukeyProportion());
    case MAConst::PROPORTION_ARCSINE:
        return use(MAArcsineProportion());
    case MAConst::PROPORTION_LOG:
        return use(MALogProportion());
    case MAConst::PROPORTION_RAW:
        return use(MARawProportion());
    case MAConst::RATE_LOG:
        return use(MALogRate());
    case MAConst::RATE_SQUARE_ROOT:
        return use(MASquareRootRate());
    case MAConst::RATE_FREEMAN_TUKEY:
        return use(MAFreemanTukeyRate());
    case MAConst::RATE_RAW:
        return use(MARawRate());
    case MAConst::CORRELATION_FISHER_Z:
        return use(MAFisherZ());
    case MAConst::CORRELATION_RAW:
        return use(MARawCorrelation());
    case MAConst::MEAN_RAW:
        return use(MARawMean());
    case MAConst::MEAN_LOG:
        return use(MALogMean());
    case MAConst::RATES_RATIO:
        return use(MARateRatio());
    case MAConst::RATES_DIFFERENCE:
        return use(MARateDifference());
    case MAConst::RATES_ROOT_DIFFERENCE:
        return use(MARootRateDifference());
    }
}

} // namespace MA_NAMESPACE
