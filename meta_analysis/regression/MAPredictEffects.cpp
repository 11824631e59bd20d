#include "meta_analysis/regression/MAPredictEffects.h"

#include <cmath>

namespace MA_NAMESPACE {

MAPredictedEffect PredictEffectAt(const MARegFit& fit, const MAPredictionChoice& choice,
                                  const std::vector<double>& predictors)
{
    MAPredictedEffect predicted;
    if (fit.NonRedundantCount() == 0 || !fit.Design().Columns().Determines(predictors.data()))
        return predicted;
    const MARegFit::Combination combined = fit.Combine(predictors);
    predicted.effect = combined.value;
    if (KXMV::IsMissing(choice.scale))
        return predicted;
    const double variance =
        choice.scale * Dot(combined.root.data(), combined.root.data(), combined.root.size());
    predicted.stdError = std::sqrt(variance);
    if (choice.criticalValue == 0.0)
        return predicted;
    const double halfWidth = choice.criticalValue * predicted.stdError;
    predicted.ciLower = predicted.effect - halfWidth;
    predicted.ciUpper = predicted.effect + halfWidth;
    if (KXMV::IsMissing(choice.tau2))
        return predicted;
    const double halfPrediction = choice.criticalValue * std::sqrt(variance + choice.tau2);
    predicted.piLower = predicted.effect - halfPrediction;
    predicted.piUpper = predicted.effect + halfPrediction;
    return predicted;
}

MAPredictedEffect PredictEffectOf(const MARegFit& fit, const MAPredictionChoice& choice, const Record& values)
{
    MADesignRow row;
    if (!fit.Design().GetRow(values, row, true).IsOK() || row.isBad)
        return {};
    return PredictEffectAt(fit, choice, row.predictors);
}

} // namespace MA_NAMESPACE
