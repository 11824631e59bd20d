#include "meta_analysis/regression/MAResidualTau2.h"

#include "meta_analysis/pooling/MARegressionTau2.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
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

} // namespace

MARegressionCurve& MAResidualTau2::Curve()
{
    if (!curve_.has_value())
        curve_.emplace(design_->Columns(), design_->Rows().variances,
                       LikelihoodOf(EstimatorOf(design_->GetSettings())));
    return *curve_;
}

KXStatus MAResidualTau2::Fit(MAWeightMode mode, double tau2)
{
    const KXStatus fitted = fit_.Fit(mode, tau2);
    if (fitted.IsError())
        return fitted;
    fit_.Residuals(residuals_);
    fit_.LeverageComplements(fitOfLeverages_, leverageComplements_);
    return fitted;
}

MATau2Fit MAResidualTau2::FitOf() const
{
    return {*design_, residuals_, leverageComplements_, fit_.Weights(), fit_.NonRedundantCount()};
}

MATau2Estimate MAResidualTau2::EstimateByFit(MAWeightMode mode, double tau2)
{
    const KXStatus fitted = Fit(mode, tau2);
    if (fitted.IsError())
        return FailedTau2(fitted);
    const MATau2Choice choice = ChoiceOf(design_->GetSettings());
    return IsIterative(choice.estimator) ? IterateTau2(FitOf(), choice, Curve())
                                         : EstimateTau2(FitOf(), choice);
}

MATau2Estimate MAResidualTau2::StartOfSearch()
{
    const KXStatus fitted = Fit(MAWeightMode::Unweighted, 0.0);
    if (fitted.IsError())
        return FailedTau2(fitted);
    MATau2Choice choice = ChoiceOf(design_->GetSettings());
    Curve().Restart(LikelihoodOf(choice.estimator));
    choice.estimator = MAConst::TAU2_HE;
    return EstimateTau2(FitOf(), choice);
}

MATau2Estimate MAResidualTau2::Search(double start)
{
    return SearchTau2(FitOf(), ChoiceOf(design_->GetSettings()), start, Curve());
}

/// Sidik and Jonkman's one step from the crude variance of the effects, tau²_0: its weights are those of the
/// fit, tau²_0 / (v + tau²_0).
MATau2Estimate MAResidualTau2::EstimateBySidikJonkman()
{
    if (design_->Rows().Count() == 1)
        return FailedTau2(KXStatus(MAStatusCode::ONE_USABLE_STUDY));
    const double crude = CrudeVariance(design_->Rows());
    return crude == 0.0 ? noVariance : EstimateByFit(MAWeightMode::ScaledRandom, crude);
}

MATau2Estimate MAResidualTau2::Estimate()
{
    const MAConst::TAU2ESTIMATOR estimator = EstimatorOf(design_->GetSettings());
    switch (estimator) {
    case MAConst::TAU2_DL:
        return EstimateByFit(MAWeightMode::FixedEffect);
    case MAConst::TAU2_SJ:
        return EstimateBySidikJonkman();
    // Hunter and Schmidt's published estimator has fixed-effect weights; the unweighted fit makes tau²
    // larger, and with it R² smaller.
    case MAConst::TAU2_HS:
    case MAConst::TAU2_HE:
    // The iterative estimators start from Hedges' estimate.
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return EstimateByFit(MAWeightMode::Unweighted);
    }
    return noVariance;
}

MATau2Estimate MAResidualTau2::EstimateWithoutPredictors()
{
    const MADesignRows& rows = design_->Rows();
    effectSizes_.resize(rows.Count());
    for (std::size_t i = 0; i < rows.Count(); ++i)
        effectSizes_[i] = rows.Dependent(i);
    return EstimateTau2(MAEffects{effectSizes_, rows.variances}, ChoiceOf(design_->GetSettings()));
}

MATau2Estimate EstimateResidualTau2(const MADesignMatrix& design)
{
    return MAResidualTau2(design).Estimate();
}

MATau2Estimate EstimateTau2WithoutPredictors(const MADesignMatrix& design)
{
    return MAResidualTau2(design).EstimateWithoutPredictors();
}

} // namespace MA_NAMESPACE
