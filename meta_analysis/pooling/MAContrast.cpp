#include "meta_analysis/pooling/MAContrast.h"

#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

KXStatus StatusOf(const MAEffects& studies, std::span<const double> coefficients)
{
    if (!studies.HaveEqualLengths() || coefficients.size() != studies.Count())
        return KXStatus(MAStatusCode::LENGTH_MISMATCH);
    const bool isMissing =
        std::any_of(coefficients.begin(), coefficients.end(), [](double g) { return KXMV::IsMissing(g); });
    return isMissing ? KXStatus(MAStatusCode::CONTRAST_COEFFICIENT_MISSING, true) : KXStatus();
}

bool CountsForTable(double coefficient)
{
    return coefficient != 0.0 && !KXMV::IsMissing(coefficient);
}

/// With the coefficients for which `counts` holds.
template <class Counts>
MAEstimate Contrast(const MAEffects& studies, std::span<const double> coefficients, double alpha,
                    Counts counts)
{
    double contrast = 0.0;
    double variance = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        if (!counts(coefficients[i]))
            continue;
        contrast += studies.effectSizes[i] * coefficients[i];
        variance += coefficients[i] * coefficients[i] * studies.variances[i];
    }
    MAEstimate result = InferNormal(contrast, variance, 0.0, TwoSidedNormalQuantile(alpha));
    if (!(variance > 0.0)) {
        result.statistic = KXMV::Missing();
        result.pValue = MAPValue();
    }
    return result;
}

/// Whether each study that takes part has an effect with a variance.
bool IsDefined(const MAEffects& studies, std::span<const double> coefficients)
{
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        if (CountsForTable(coefficients[i]) &&
            (KXMV::IsMissing(studies.effectSizes[i]) || !std::isfinite(studies.variances[i])))
            return false;
    }
    return true;
}

} // namespace

MAContrastTest TestContrast(const MAEffects& studies, std::span<const double> coefficients, double alpha)
{
    const KXStatus status = StatusOf(studies, coefficients);
    if (status.IsError())
        return {status, MAEstimate()};
    return {status, Contrast(studies, coefficients, alpha, [](double g) { return !KXMV::IsMissing(g); })};
}

/// A coefficient of 0 leaves its study out: times a variance that is infinite it would be no number.
MAContrastTest TestTableContrast(const MAEffects& tables, std::span<const double> coefficients, double alpha)
{
    const KXStatus status = StatusOf(tables, coefficients);
    if (status.IsError() || !IsDefined(tables, coefficients))
        return {status, MAEstimate()};
    return {status, Contrast(tables, coefficients, alpha, CountsForTable)};
}

} // namespace MA_NAMESPACE
