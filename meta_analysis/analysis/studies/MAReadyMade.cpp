#include "meta_analysis/analysis/studies/MAReadyMade.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAConversions.h"
#include "meta_analysis/effectsize/MAPoolable.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

MAReadyMade Excluded(MAConst::EXCLUSION reason)
{
    return {reason, 0.0, 0.0, 0.0, MAConst::CONVERSION_NONE, false};
}

bool NamesInterval(const MAInputSettings& settings)
{
    return settings.GetInputCILowerIndex() != -1 && settings.GetInputCIUpperIndex() != -1;
}

bool NamesPValue(const MAInputSettings& settings)
{
    return settings.GetInputPValueIndex() != -1;
}

bool NamesVariance(const MAModelSettings& settings)
{
    return settings.GetInputVaranceVarIndex() != -1;
}

bool NamesSpread(const MAModelSettings& settings)
{
    return NamesVariance(settings) || settings.GetInputStdErrorIndex() != -1;
}

/// The variance, or the standard error where no variable of variances is given.
double ReadSpread(const Record& record, const MAModelSettings& settings)
{
    return ReadStudyValue(record, NamesVariance(settings) ? settings.GetInputVaranceVarIndex()
                                                          : settings.GetInputStdErrorIndex());
}

MAReadyMade WithSpread(double estimate, double spread, const MAModelSettings& settings)
{
    const bool isVariance = NamesVariance(settings);
    if (settings.GetInputIsRatio() && !(estimate > 0.0))
        return Excluded(MAConst::EXCLUSION_RATIO_NOT_POSITIVE);
    return {MAConst::EXCLUSION_NONE,
            settings.GetInputIsRatio() ? std::log(estimate) : estimate,
            isVariance ? spread : spread * spread,
            isVariance ? std::sqrt(spread) : spread,
            MAConst::CONVERSION_NONE,
            false};
}

MAReadyMade WithConversion(const MAConvertedEffect& effect, MAConst::CONVERSION from)
{
    return {effect.status, effect.effectSize,  effect.stdError * effect.stdError, effect.stdError,
            from,          effect.isAsymmetric};
}

/// From the interval when the record has both limits, else from the p-value.
MAReadyMade WithConversion(const Record& record, double estimate, const MAInputSettings& settings)
{
    const double lower = ReadStudyValue(record, settings.GetInputCILowerIndex());
    const double upper = ReadStudyValue(record, settings.GetInputCIUpperIndex());
    const bool hasInterval = NamesInterval(settings) && !KXMV::IsMissing(lower) && !KXMV::IsMissing(upper);
    if (hasInterval)
        return WithConversion(EffectOfInterval(estimate, lower, upper, settings.GetInputCILevel(),
                                               settings.GetInputIsRatio(),
                                               ReadStudyValue(record, settings.GetInputDecimalsIndex())),
                              MAConst::CONVERSION_INTERVAL);
    return WithConversion(EffectOfPValue(estimate, ReadStudyValue(record, settings.GetInputPValueIndex()),
                                         settings.GetInputIsRatio()),
                          MAConst::CONVERSION_P_VALUE);
}

/// The first spread that the record has. Missing is tested on what was read, before anything is derived from
/// it.
MAReadyMade Read(const Record& record, const MAModelSettings& settings)
{
    const double estimate = ReadStudyValue(record, settings.GetInputEffectsizeIndex());
    if (KXMV::IsMissing(estimate))
        return Excluded(MAConst::EXCLUSION_MISSING_VALUE);
    if (!NamesSpread(settings) && !NamesConversions(settings))
        return Excluded(MAConst::EXCLUSION_NO_SPREAD_GIVEN);
    const double spread = NamesSpread(settings) ? ReadSpread(record, settings) : KXMV::Missing();
    return KXMV::IsMissing(spread) ? WithConversion(record, estimate, settings)
                                   : WithSpread(estimate, spread, settings);
}

bool IsImpossibleDifference(double effectSize, const MAModelSettings& settings)
{
    return std::abs(effectSize) > 1.0 && settings.GetBinaryEstType() == MAConst::BIN_RISK_DIFFERENCE &&
           settings.GetOutcomesType() == MAConst::OUTCOME_BINARY;
}

MAConst::EXCLUSION Judge(const MAReadyMade& study, const MAModelSettings& settings)
{
    if (study.status != MAConst::EXCLUSION_NONE)
        return study.status;
    if (!(study.stdError > 0.0))
        return MAConst::EXCLUSION_SPREAD_NOT_POSITIVE;
    if (!IsPoolable(study.effectSize, study.variance))
        return MAConst::EXCLUSION_NOT_POOLABLE;
    return IsImpossibleDifference(study.effectSize, settings) ? MAConst::EXCLUSION_DIFFERENCE_IMPOSSIBLE
                                                              : MAConst::EXCLUSION_NONE;
}

} // namespace

bool NamesConversions(const MAInputSettings& settings)
{
    return NamesInterval(settings) || NamesPValue(settings);
}

MAReadyMade ReadReadyMade(const Record& record, const MAModelSettings& settings)
{
    MAReadyMade study = Read(record, settings);
    study.status = Judge(study, settings);
    return study;
}

} // namespace MA_NAMESPACE
