#include "meta_analysis/bulk/MASetRegression.h"

#include "meta_analysis/pooling/MATau2Inference.h"
#include "meta_analysis/regression/MARegBuild.h"
#include "meta_analysis/regression/MARegHeterogeneity.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

MARegSettings SettingsOf(const MABulkRegression& model, bool hasIntercept)
{
    MARegSettings settings;
    settings.SetInterceptUse(hasIntercept);
    settings.SetComputationalTolerance(model.redundancyTolerance);
    settings.SetEstTauType(allEstimators[model.tau2.estimator].code);
    settings.SetTau2Search(model.tau2.search);
    settings.SetMaxIterations(model.tau2.limits.maxIter);
    settings.SetMaxStepHalvingValue(model.tau2.limits.maxStepHalving);
    settings.SetParameterTolerance(model.tau2.limits.tolerance);
    settings.SetKnapHartAdjust(model.knappHartung != MAConst::KNAPP_HARTUNG_NONE);
    settings.SetTruncAjustValue(model.knappHartung == MAConst::KNAPP_HARTUNG_TRUNCATED);
    settings.SetKnapHartIfHeterogeneous(model.knappHartung == MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS);
    settings.SetTestDistType(model.tests);
    settings.SetMultiDiser(model.hasDispersion);
    return settings;
}

MASetRegression::MASetRegression(const MARegSettings& settings, const MABulkRegression& model,
                                 const MAWantedRegression& wanted, std::size_t columnCount,
                                 std::size_t mostRows)
    : choice_(model),
      wanted_(wanted),
      remembered_(MAQuantiles::MemoryFor(mostRows)),
      quantiles_(model.alpha, remembered_),
      design_(settings),
      tau2_(design_),
      fit_(design_),
      tests_(columnCount),
      pValues_(columnCount),
      directions_(columnCount)
{}

void MASetRegression::Warn(int code)
{
    if (model_.status == 0)
        model_.status = code;
}

bool MASetRegression::IsSearched() const
{
    return choice_.isRandom && IsIterative(choice_.tau2.estimator) &&
           choice_.tau2.search == MAConst::TAU2_SEARCH_GLOBAL;
}

bool MASetRegression::KeepsCurve() const
{
    return choice_.tau2Interval != MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD &&
           (IsSearched() || !IsIterative(choice_.tau2.estimator));
}

bool MASetRegression::TakesProfileOfQ() const
{
    return KeepsCurve() && wanted_.tau2Interval && choice_.tau2Interval == MAConst::TAU2_INTERVAL_Q_PROFILE;
}

bool MASetRegression::TakesSumsAtZero() const
{
    return KeepsCurve() && (wanted_.heterogeneity || TakesProfileOfQ());
}

void MASetRegression::Begin(const MADesignRows& rows)
{
    model_ = Model();
    design_.SetRows(rows);
    if (IsSearched())
        start_ = tau2_.StartOfSearch();
    else if (choice_.isRandom)
        tau2_.Curve().Restart(LikelihoodOf(choice_.tau2.estimator));
}

const MASetRegression::Model& MASetRegression::Finish()
{
    if (choice_.isRandom)
        RegressRandomEffects();
    else
        RegressFixedEffects();
    return model_;
}

MATau2Estimate MASetRegression::EstimateTau2()
{
    if (!IsSearched())
        return tau2_.Estimate();
    return start_.status.IsError() ? start_ : tau2_.Search(start_.tau2);
}

void MASetRegression::RegressRandomEffects()
{
    const MATau2Estimate estimate = EstimateTau2();
    if (estimate.status.IsError()) {
        model_.status = estimate.status.GetCode();
        return;
    }
    const MARegSettings& settings = design_.GetSettings();
    model_.tau2 = estimate.tau2;
    fit_.Fit(MAWeightMode::RandomEffects, estimate.tau2);
    model_.isFitted = true;
    model_.isAdjusted = IsAdjusted(settings, fit_.ResidualDf(), estimate.tau2);
    if (model_.isAdjusted)
        model_.scale = KnappHartungScale(fit_, settings.IsTruncAjustValue());
    TestCoefficients(UsesStudentT(settings, model_.isAdjusted));
    TestModel();
    DescribeHeterogeneity(estimate.convergence);
    if (fit_.ResidualDf() == 0)
        Warn(MAStatusCode::NO_RESIDUAL_DF);
    if (wanted_.rSquare)
        model_.rSquare =
            ExplainedPart(estimate.tau2, tau2_.EstimateWithoutPredictors(), design_.MeanVariance());
}

void MASetRegression::RegressFixedEffects()
{
    const MARegSettings& settings = design_.GetSettings();
    fit_.Fit(MAWeightMode::FixedEffect, 0.0);
    model_.isFitted = true;
    if (settings.HasMultiDisper()) {
        const MADispersion dispersion = DispersionOf(fit_);
        model_.dispersion = model_.scale = dispersion.value;
        Warn(dispersion.warning.GetCode());
    }
    TestCoefficients(UsesStudentT(settings, IsAdjusted(settings, fit_.ResidualDf(), 0.0)));
    TestModel();
    if (wanted_.heterogeneity)
        model_.residual = ResidualHeterogeneity(fit_);
    if (fit_.ResidualDf() == 0)
        Warn(MAStatusCode::NO_RESIDUAL_DF);
}

void MASetRegression::TestCoefficients(bool useStudentT)
{
    const std::vector<std::size_t>& estimated = fit_.EstimatedColumns();
    const bool hasTests = wanted_.tests && !KXMV::IsMissing(model_.scale);
    const double critical = hasTests ? CriticalValue(fit_.ResidualDf(), useStudentT, quantiles_) : 0.0;
    for (std::size_t position = 0; position < estimated.size(); ++position) {
        tests_[position] = {};
        pValues_[position] = {};
        if (!hasTests)
            continue;
        const double stdError =
            std::sqrt(model_.scale) * fit_.UnscaledStdError(position, directions_[position]);
        MACoefficientTest& test = tests_[position];
        test = TestCoefficient(fit_.Coefficients()[estimated[position]], stdError, critical);
        if (wanted_.pValues && !KXMV::IsMissing(test.statistic))
            pValues_[position] = CoefficientPValue(test.statistic, fit_.ResidualDf(), useStudentT);
    }
}

void MASetRegression::TestModel()
{
    if (wanted_.modelTest)
        model_.modelTest = model_.isAdjusted ? FTest(fit_, model_.scale) : WaldTest(fit_, model_.dispersion);
}

/// A curve that is fresh, or of a search that ended with a proof, serves again, with what it has evaluated;
/// but not for the profile likelihood, which would take up evaluations that differ in their rounding.
/// After scoring the interval takes up what the check of tau² and the likelihood have evaluated, as it does
/// in one regression: they are computed for it, wanted or not.
void MASetRegression::DescribeHeterogeneity(MAConst::TAU2CONVERGENCE convergence)
{
    const bool isProfile = choice_.tau2Interval == MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD;
    MARegressionCurve& curve = tau2_.Curve();
    const bool isProved = !IsIterative(choice_.tau2.estimator) || convergence == MAConst::TAU2_GLOBAL_OPTIMUM;
    if (!KeepsCurve() || !isProved)
        curve.Restart(LikelihoodOf(choice_.tau2.estimator));
    const double meanVariance = design_.MeanVariance();
    const bool hasInterval = wanted_.tau2Interval && choice_.tau2Interval != MAConst::TAU2_INTERVAL_NONE;
    const bool checksTau2 = wanted_.status || (hasInterval && !isProved);
    if (checksTau2 && IsTau2Doubtful(curve, choice_.tau2.estimator, model_.tau2, convergence,
                                     [&] { return TypicalVariance(curve, meanVariance); }))
        Warn(MAStatusCode::TAU2_DOUBTFUL);
    if (wanted_.heterogeneity || hasInterval) // the interval starts from what the former evaluates
        model_.residual = ResidualHeterogeneity(model_.tau2, curve, meanVariance);
    if (hasInterval && fit_.ResidualDf() >= 1)
        InferTau2(
            curve, model_.tau2,
            {choice_.tau2.estimator, choice_.tau2Interval, fit_.NonRedundantCount(), isProfile || !isProved},
            quantiles_, model_.tau2Results);
}

double MASetRegression::UnscaledCovariance(std::size_t first, std::size_t second) const
{
    const std::vector<double>& direction = directions_[first];
    return Dot(direction.data(), directions_[second].data(), direction.size());
}

} // namespace MA_NAMESPACE
