#pragma once

#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// What a study of a measure reports.
enum class MAOutcomeData
{
    Proportion,  ///< events, and non-events or the size, of one group
    Rate,        ///< events and person-time of one group
    Correlation, ///< coefficient and size
    Mean,        ///< size, mean and standard deviation of one group
    Rates        ///< events and person-time of two groups
};

/// The scale on which a measure is analysed, x the value on the natural scale. `MANaturalScale.h` has the way
/// back.
enum class MAScale
{
    Natural,                ///< x
    Log,                    ///< log x
    Logit,                  ///< log(x / (1 - x))
    Arcsine,                ///< asin(√x)
    SquareRoot,             ///< √x
    FisherZ,                ///< atanh x
    FreemanTukeyProportion, ///< depends on the size of the group
    FreemanTukeyRate        ///< depends on the person-time
};

/// A measure of one group, or of the rates of two groups.
struct MAOutcomeMeasure
{
    MAConst::OUTCOMEMEASURE type;
    MAOutcomeData data;
    MAScale scale;
    bool correctsZeros; ///< whether counts of 0 receive the zero-count constant
    bool poolsCounts;   ///< whether Mantel-Haenszel weights can pool the counts of the studies
};

/// Each measure stands at the position that is its number, which the assertion below checks.
inline constexpr MAOutcomeMeasure allOutcomeMeasures[] = {
    {MAConst::PROPORTION_LOGIT, MAOutcomeData::Proportion, MAScale::Logit, true, false},
    {MAConst::PROPORTION_FREEMAN_TUKEY, MAOutcomeData::Proportion, MAScale::FreemanTukeyProportion, false,
     false},
    {MAConst::PROPORTION_ARCSINE, MAOutcomeData::Proportion, MAScale::Arcsine, false, false},
    {MAConst::PROPORTION_LOG, MAOutcomeData::Proportion, MAScale::Log, true, false},
    {MAConst::PROPORTION_RAW, MAOutcomeData::Proportion, MAScale::Natural, true, false},
    {MAConst::RATE_LOG, MAOutcomeData::Rate, MAScale::Log, true, false},
    {MAConst::RATE_SQUARE_ROOT, MAOutcomeData::Rate, MAScale::SquareRoot, false, false},
    {MAConst::RATE_FREEMAN_TUKEY, MAOutcomeData::Rate, MAScale::FreemanTukeyRate, false, false},
    {MAConst::RATE_RAW, MAOutcomeData::Rate, MAScale::Natural, true, false},
    {MAConst::CORRELATION_FISHER_Z, MAOutcomeData::Correlation, MAScale::FisherZ, false, false},
    {MAConst::CORRELATION_RAW, MAOutcomeData::Correlation, MAScale::Natural, false, false},
    {MAConst::MEAN_RAW, MAOutcomeData::Mean, MAScale::Natural, false, false},
    {MAConst::MEAN_LOG, MAOutcomeData::Mean, MAScale::Log, false, false},
    {MAConst::RATES_RATIO, MAOutcomeData::Rates, MAScale::Log, true, true},
    {MAConst::RATES_DIFFERENCE, MAOutcomeData::Rates, MAScale::Natural, true, true},
    {MAConst::RATES_ROOT_DIFFERENCE, MAOutcomeData::Rates, MAScale::Natural, false, false},
};
inline constexpr int outcomeMeasureCount = sizeof allOutcomeMeasures / sizeof *allOutcomeMeasures;

/// Whether the number is one of the enumeration. The compiler warns of an enumerator that is missing here.
constexpr bool IsMeasure(MAConst::OUTCOMEMEASURE type)
{
    switch (type) {
    case MAConst::PROPORTION_LOGIT:
    case MAConst::PROPORTION_FREEMAN_TUKEY:
    case MAConst::PROPORTION_ARCSINE:
    case MAConst::PROPORTION_LOG:
    case MAConst::PROPORTION_RAW:
    case MAConst::RATE_LOG:
    case MAConst::RATE_SQUARE_ROOT:
    case MAConst::RATE_FREEMAN_TUKEY:
    case MAConst::RATE_RAW:
    case MAConst::CORRELATION_FISHER_Z:
    case MAConst::CORRELATION_RAW:
    case MAConst::MEAN_RAW:
    case MAConst::MEAN_LOG:
    case MAConst::RATES_RATIO:
    case MAConst::RATES_DIFFERENCE:
    case MAConst::RATES_ROOT_DIFFERENCE:
        return true;
    }
    return false;
}

constexpr bool EachOutcomeMeasureHasItsRow()
{
    for (int i = 0; i < outcomeMeasureCount; ++i)
        if (allOutcomeMeasures[i].type != i || !IsMeasure(allOutcomeMeasures[i].type))
            return false;
    return !IsMeasure(static_cast<MAConst::OUTCOMEMEASURE>(outcomeMeasureCount));
}
static_assert(EachOutcomeMeasureHasItsRow());

/// A number outside the enumeration counts as analysed on the natural scale.
constexpr MAScale ScaleOf(MAConst::OUTCOMEMEASURE type)
{
    return IsMeasure(type) ? allOutcomeMeasures[type].scale : MAScale::Natural;
}

constexpr bool CorrectsZeros(MAConst::OUTCOMEMEASURE type)
{
    return IsMeasure(type) && allOutcomeMeasures[type].correctsZeros;
}

/// Whether the way back to the natural scale depends on the size of the study, or of the studies pooled.
constexpr bool DependsOnSize(MAScale scale)
{
    return scale == MAScale::FreemanTukeyProportion || scale == MAScale::FreemanTukeyRate;
}

/// Whether an analysis pools the counts of the studies instead of their effect sizes: a fixed-effect model of
/// raw data with the weights of Mantel and Haenszel, for a measure that has them.
constexpr bool PoolsCounts(MAConst::OUTCOMEMEASURE type, MAConst::MODELTYPE model, MAConst::WEIGHTYPE weights,
                           MAConst::INPUTESTYPE input)
{
    return IsMeasure(type) && allOutcomeMeasures[type].poolsCounts && model == MAConst::MODEL_FIXED &&
           weights == MAConst::WEIGHT_BINARY_FIXED && input == MAConst::INPUT_RAW;
}

} // namespace MA_NAMESPACE
