#include "meta_analysis/regression/MAREAlgorithm.h"

#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MATau2Inference.h"
#include "meta_analysis/regression/MARegBuild.h"
#include "meta_analysis/regression/MARegHeterogeneity.h"
#include "meta_analysis/regression/MAResidualTau2.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

namespace MA_NAMESPACE {

namespace {

/// Tests and heterogeneity, as far as the use asks for them. Error `ITERATOR_FAILED` when the host cancels.
KXStatus Describe(const MARegTask& task, MARegBuild& build)
{
    const MARegSettings& settings = task.Settings();
    const MARegFit& fit = *build.fit;
    MARegResults& results = build.results;
    const bool isAdjusted = IsAdjusted(settings, fit.ResidualDf(), results.tau2);
    if (isAdjusted)
        build.scale = KnappHartungScale(fit, settings.IsTruncAjustValue());
    if (task.use == MARegUse::Statistics)
        return KXStatus();
    results.tests = TestCoefficients(fit, build.scale, UsesStudentT(settings, isAdjusted));
    const MAConst::TAU2ESTIMATOR estimator = EstimatorOf(settings);
    // A code that is no estimator has the curve of Q.
    MARegressionCurve curve(task.design.Columns(), task.design.Rows().variances, LikelihoodOf(estimator));
    results.tau2Results.isDoubtful =
        IsTau2Doubtful(curve, estimator, results.tau2, results.tau2Results.convergence,
                       [&] { return TypicalVariance(curve, task.design.MeanVariance()); });
    if (results.tau2Results.isDoubtful)
        build.Passed(KXStatus(MAStatusCode::TAU2_DOUBTFUL, true));
    if (task.use == MARegUse::SmallStudyTest)
        return KXStatus();
    if (isAdjusted)
        results.f = FTest(fit, build.scale);
    else
        results.wald = WaldTest(fit, results.dispersion);
    if (!MAProgress(settings, settings.GetIterProgressListener()).Step())
        return KXStatus(MAStatusCode::ITERATOR_FAILED);
    results.residual = ResidualHeterogeneity(results.tau2, curve, task.design.MeanVariance());
    if (results.residual.df == 0)
        build.Passed(KXStatus(MAStatusCode::NO_RESIDUAL_DF, true));
    results.rSquare =
        ExplainedPart(results.tau2, EstimateTau2WithoutPredictors(task.design), task.design.MeanVariance());
    if (estimator != unknownEstimator && fit.ResidualDf() >= 1) {
        MAQuantiles quantiles(AlphaOf(settings.GetConfidenceLevel()));
        InferTau2(curve, results.tau2, {estimator, settings.GetTau2Interval(), fit.NonRedundantCount()},
                  quantiles, results.tau2Results);
    }
    return KXStatus();
}

MARegBuild FitRandomEffects(const MARegTask& task)
{
    MARegBuild build;
    const MATau2Estimate estimate = EstimateResidualTau2(task.design);
    if (!build.Passed(estimate.status))
        return build;
    build.results.tau2 = estimate.tau2;
    build.results.tau2Results.convergence = estimate.convergence;
    build.results.tau2Results.evaluations = estimate.evaluations;
    if (!build.Fit(task.design, MAWeightMode::RandomEffects, estimate.tau2))
        return build;
    if (task.use != MARegUse::BubblePlot && !build.Passed(Describe(task, build)))
        return build;
    if (task.use == MARegUse::Statistics)
        return build;
    const bool isAdjusted = IsAdjusted(task.Settings(), build.fit->ResidualDf(), estimate.tau2);
    build.criticalValue = CriticalValue(*build.fit, UsesStudentT(task.Settings(), isAdjusted));
    return build;
}

} // namespace

MAREAlgorithm::MAREAlgorithm(const MARegSettings& settings) : MARegAlgorithm(settings) {}
MAREAlgorithm::~MAREAlgorithm() = default;

int MAREAlgorithm::GetEstTauType() const
{
    return EstimatorOf(GetSettings());
}

KXStatus MAREAlgorithm::BuildModel(MultiPassRecordIter& records)
{
    return Build(records, true, FitRandomEffects);
}

} // namespace MA_NAMESPACE
