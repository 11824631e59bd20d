#include "meta_analysis/regression/MAResidualTau2.h"

#include "meta_analysis/pooling/MARegressionTau2.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <vector>

namespace MA_NAMESPACE {

namespace {

constexpr MATau2Estimate noVariance = {KXStatus(), 0.0, MAConst::TAU2_CLOSED_FORM, 0};

MATau2Choice ChoiceOf(const MARegSettings& settings)
{
    const MAConst::TAU2ESTIMATOR estimator = EstimatorOf(settings);
    return {
        estimator,
        {settings.GetMaxIterations(), settings.GetMaxStepHalvingValue(), settings.GetParameterTolerance()},
        settings.GetTau2Search()};
}

std::vector<double> EffectSizes(const MADesignRows& rows)
{
    std::vector<double> effectSizes;
    effectSizes.reserve(rows.Count());
    for (std::size_t i = 0; i < rows.Count(); ++i)
        effectSizes.push_back(rows.Dependent(i));
    return effectSizes;
}

MATau2Estimate EstimateFrom(const MARegFit& fit)
{
    const std::vector<double> residuals = fit.Residuals();
    const std::vector<double> complements = fit.LeverageComplements();
    return EstimateTau2(
        MATau2Fit{fit.Design(), residuals, complements, fit.Weights(), fit.NonRedundantCount()},
        ChoiceOf(fit.Design().GetSettings()));
}

MATau2Estimate EstimateByFit(const MADesignMatrix& design, MAWeightMode mode)
{
    MARegFit fit(design, mode);
    const KXStatus fitted = fit.Fit();
    if (fitted.IsError())
        return FailedTau2(fitted);
    return EstimateFrom(fit);
}

/// Variance of the effect sizes with divisor k; 0 without any.
double CrudeVariance(const MADesignRows& rows)
{
    const auto count = static_cast<double>(rows.Count());
    double sum = 0.0;
    for (std::size_t i = 0; i < rows.Count(); ++i)
        sum += rows.Dependent(i);
    const double mean = sum / count;
    double squares = 0.0;
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        const double deviation = rows.Dependent(i) - mean;
        squares += deviation * deviation;
    }
    return rows.Count() == 0 ? 0.0 : squares / count;
}

/// Sidik and Jonkman's one step from the crude variance of the effects, tau²_0: its weights are those of the
/// fit, tau²_0 / (v + tau²_0).
MATau2Estimate EstimateBySidikJonkman(const MADesignMatrix& design)
{
    if (design.Rows().Count() == 1)
        return FailedTau2(KXStatus(MAStatusCode::ONE_USABLE_STUDY));
    const double crude = CrudeVariance(design.Rows());
    if (crude == 0.0)
        return noVariance;
    MARegFit fit(design, MAWeightMode::ScaledRandom, crude);
    const KXStatus fitted = fit.Fit();
    if (fitted.IsError())
        return FailedTau2(fitted);
    return EstimateFrom(fit);
}

} // namespace

MATau2Estimate EstimateResidualTau2(const MADesignMatrix& design)
{
    const MAConst::TAU2ESTIMATOR estimator = ChoiceOf(design.GetSettings()).estimator;
    switch (estimator) {
    case MAConst::TAU2_DL:
        return EstimateByFit(design, MAWeightMode::FixedEffect);
    case MAConst::TAU2_SJ:
        return EstimateBySidikJonkman(design);
    // Hunter and Schmidt's published estimator has fixed-effect weights; the unweighted fit makes tau²
    // larger, and with it R² smaller.
    case MAConst::TAU2_HS:
    case MAConst::TAU2_HE:
    // The iterative estimators start from Hedges' estimate.
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return EstimateByFit(design, MAWeightMode::Unweighted);
    }
    return noVariance;
}

MATau2Estimate EstimateTau2WithoutPredictors(const MADesignMatrix& design)
{
    const std::vector<double> effectSizes = EffectSizes(design.Rows());
    return EstimateTau2(MAEffects{effectSizes, design.Rows().variances}, ChoiceOf(design.GetSettings()));
}

} // namespace MA_NAMESPACE
