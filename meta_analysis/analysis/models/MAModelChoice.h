#pragma once

#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MARatePooling.h"
#include "meta_analysis/pooling/MATablePooling.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <optional>

namespace MA_NAMESPACE {

/// Values that the settings of `MAOutcomeModel` have on the natural scale. Each model takes them to the scale
/// of the analysis, which may depend on the sizes of its studies.
struct MANaturalChoice
{
    MAScale scale = MAScale::Natural;
    double nullHypothesis = 0.0; ///< 0 stands for 0 on the scale of the analysis
    double threshold = KXMV::Missing();
};

/// The model that an analysis pools its studies by, from the settings, once.
struct MAModelChoice
{
    MAConst::MODELTYPE type = MAConst::MODEL_RANDOM;
    MAFixedEffectChoice fixed;
    MARandomEffectsChoice random;
    std::optional<MANaturalChoice> natural;
    bool poolsTables = false; ///< counts, by Mantel and Haenszel or Peto, not effects by inverse variance
    MATablePoolingChoice tables;
    bool poolsRates = false; ///< whether the counts pooled are those of two groups' rates, not of 2x2 tables
    MARatePoolingChoice rates;
    bool hasCommonTau2 = false; ///< of all subgroups, under random effects
};

/// The scale of the analysis whose natural values the choice has; else `Natural`.
inline MAScale ScaleOf(const MAModelChoice& choice)
{
    return choice.natural.has_value() ? choice.natural->scale : MAScale::Natural;
}

/// The settings that an analysis copies when a run starts; the values of one that has not run.
struct MARunSettings
{
    MAConst::MODELTYPE modelType = MAConst::MODEL_RANDOM;
    MAConst::TAU2ESTIMATOR estimator = MAConst::TAU2_REML;
    MAConst::KNAPPHADJTYPE knappHartung = MAConst::KNAPP_HARTUNG_NONE;
    MAConst::WEIGHTYPE weightType = MAConst::WEIGHT_INVERSE_VARIANCE;
    MAConst::INPUTESTYPE inputType = MAConst::INPUT_RAW;
};
MARunSettings RunSettingsOf(const MAModelSettings& settings);

/// Copies the type of the model, its estimator and its adjustment.
void TakeModelTypes(const MAModelSettings& settings, MARunSettings& run);

/// Whether a run on the outcome pools counts: only raw tables under the fixed-effect model. Other
/// combinations pool by inverse variance.
bool PoolsCounts(const MARunSettings& run, MAConst::OUTCOMETYPE outcome);

/// Whether a run of `MAOutcomeModel` pools counts.
bool PoolsCounts(const MARunSettings& run, MAConst::OUTCOMEMEASURE measure);

/// A run's model of effect sizes on the scale of the outcome's measure. `alpha` is 1 - confidence level.
MAModelChoice EffectsModel(const MAModelSettings& settings, const MARunSettings& run,
                           MAConst::OUTCOMETYPE outcome, double alpha);

/// The choice whose null hypothesis and threshold are on the natural scale of a measure analysed on `scale`.
MAModelChoice WithNaturalValues(MAModelChoice choice, MAScale scale);

/// The null hypothesis on the scale of the analysis, for studies of a harmonic mean size.
double NullHypothesisAt(const MAModelChoice& choice, double size);

/// The choice with its natural values on the scale of the analysis, for studies of a harmonic mean size.
MAModelChoice AtSize(MAModelChoice choice, double size);

/// The model of the trimmed studies, none of which is reported.
MAModelChoice TrimmingModel(const MAModelSettings& settings, MAModelChoice choice);

/// The model without an interval of tau², where none is reported.
MAModelChoice WithoutTau2Interval(MAModelChoice choice);

/// The model of a step that is not reported for itself, such as one of a cumulative analysis: without an
/// interval of tau², and without the check of tau².
MAModelChoice ModelOfStep(MAModelChoice choice);

} // namespace MA_NAMESPACE
