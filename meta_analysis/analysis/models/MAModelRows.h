#pragma once

#include "meta_analysis/analysis/MAModelResults.h"
#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/pooling/MAContinousFixEffectModel.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"

#include <cmath>

namespace MA_NAMESPACE {

// The rows that fitted models leave in the per-model lists.

inline MAModelRow RowOf(const MAContinousFixEffectModel& model)
{
    return {model.GetEstMeanEffectSize(),
            model.GetEstEffectSizeVariance(),
            model.GetEstEffectSizeStdError(),
            model.GetEstEffectSizeZVal(),
            PValueOf(model.GetEstEffectSizeSig(), [&] { return model.GetEstEffectSizeLog10Sig(); }),
            model.GetEstEffectSizeCILower(),
            model.GetEstEffectSizeCIUpper()};
}

inline MAModelRow RowOf(const MARandomEffectModel& model)
{
    return {model.GetEstEffectSize(),
            model.GetEstESVariance(),
            std::sqrt(model.GetEstESVariance()),
            model.GetEstESTestStat(),
            PValueOf(model.GetEstESSig(), [&] { return model.GetEstESLog10Sig(); }),
            model.GetEstESCILower(),
            model.GetEstESCIUpper()};
}

/// A row of the log scale on the ratio scale.
inline MAExponentiatedRow Exponentiated(const MAModelRow& row)
{
    return {RatioOf(row.estimate), RatioOf(row.ciLower), RatioOf(row.ciUpper)};
}

/// Degrees of freedom of a homogeneity test that was made; a model of one study makes none.
template <class Model>
double HomogeneityDf(const Model& model)
{
    return KXMV::IsMissing(model.GetHomogeneityTestQ()) ? KXMV::Missing() : model.GetHomogeneityTestDf();
}

/// Heterogeneity output of either fixed-effect model; these have no prediction interval.
template <class FixedModel>
MAHeterogeneityRow HeterogeneityRowOf(const FixedModel& model)
{
    MAHeterogeneityRow row;
    row.q = model.GetHomogeneityTestQ();
    row.df = HomogeneityDf(model);
    row.pValue =
        PValueOf(model.GetHomogeneityTestPVal(), [&] { return model.GetHomogeneityTestLog10PVal(); });
    row.h2 = model.GetHeterogeneityTestH2();
    row.h2Lower = model.GetHeterogeneityTestH2CILower();
    row.h2Upper = model.GetHeterogeneityTestH2CIUpper();
    row.i2 = model.GetHeterogeneityTestI2();
    row.i2Lower = model.GetHeterogeneityTestI2CILower();
    row.i2Upper = model.GetHeterogeneityTestI2CIUpper();
    return row;
}

inline MAHeterogeneityRow HeterogeneityRowOf(const MARandomEffectModel& model)
{
    MAHeterogeneityRow row;
    row.q = model.GetHomogeneityTestQ();
    row.df = HomogeneityDf(model);
    row.pValue =
        PValueOf(model.GetHomogeneityTestPVal(), [&] { return model.GetHomogeneityTestLog10PVal(); });
    row.h2 = model.GetHeterogeneityTestH2();
    row.h2Lower = model.GetHeterogeneityTestH2CILower();
    row.h2Upper = model.GetHeterogeneityTestH2CIUpper();
    row.i2 = model.GetHeterogeneityTestI2();
    row.i2Lower = model.GetHeterogeneityTestI2CILower();
    row.i2Upper = model.GetHeterogeneityTestI2CIUpper();
    row.piLower = model.GetEstESPILower();
    row.piUpper = model.GetEstESPIUpper();
    row.piProbability = model.GetPIProbability();
    row.tau2Lower = model.GetTau2CILower();
    row.tau2Upper = model.GetTau2CIUpper();
    row.tau2Convergence = model.GetTau2Convergence();
    row.tau2Evaluations = model.GetTau2Evaluations();
    row.logLikelihood = model.GetLogLikelihood();
    row.aic = model.GetAIC();
    row.bic = model.GetBIC();
    row.aicc = model.GetAICc();
    return row;
}

} // namespace MA_NAMESPACE
