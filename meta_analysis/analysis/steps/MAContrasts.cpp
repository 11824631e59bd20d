#include "meta_analysis/analysis/steps/MAContrasts.h"

#include "meta_analysis/pooling/MAContrast.h"
#include "meta_analysis/pooling/MATablePooling.h"

#include <algorithm>

namespace MA_NAMESPACE {

namespace {

/// A NaN is no zero.
bool AreZero(const std::vector<double>& coefficients)
{
    return std::all_of(coefficients.begin(), coefficients.end(), [](double c) { return c == 0.0; });
}

} // namespace

std::vector<MAContrast> TestContrasts(const MAStudies& studies, const MAFixedEffectChoice& choice)
{
    std::vector<MAContrast> contrasts;
    for (const std::vector<double>& coefficients : studies.contrastCoefficients) {
        const MAContrastTest test =
            TestContrast({studies.effectSize, studies.variance}, coefficients, choice.alpha);
        contrasts.push_back({test.contrast, test.status, AreZero(coefficients)});
    }
    return contrasts;
}

std::vector<MAContrast> TestTableContrasts(const MAStudies& studies, const MATablePoolingChoice& choice)
{
    const MATableEffects effects = EffectsOfTables(studies.tables, choice);
    std::vector<MAContrast> contrasts;
    for (const std::vector<double>& coefficients : studies.contrastCoefficients) {
        MAContrastTest test = TestTableContrast(effects.AsEffects(), coefficients, choice.alpha);
        // The statistic receives the standard error once more, as hosts expect of this path.
        test.contrast.statistic = test.contrast.stdError;
        contrasts.push_back({test.contrast, test.status, AreZero(coefficients)});
    }
    return contrasts;
}

} // namespace MA_NAMESPACE
