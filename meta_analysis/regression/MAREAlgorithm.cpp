#include "meta_analysis/regression/MAREAlgorithm.h"

#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MAKnappHartung.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MATau2Inference.h"
#include "meta_analysis/regression/MARegBuild.h"
#include "meta_analysis/regression/MAResidualTau2.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>

namespace MA_NAMESPACE {

namespace {

/// A variance below this part of the mean within-study variance counts as zero: squared rounding errors leave
/// less.
constexpr double negligible = 1e-12;

/// Scale of the covariance after Knapp and Hartung. Without residual degrees of freedom there is no factor,
/// and the truncated one is 1.
double KnappHartungScale(const MARegFit& fit, bool truncated)
{
    const int df = fit.ResidualDf();
    if (df == 0)
        return truncated ? 1.0 : KXMV::Missing();
    return KnappHartungFactor(fit.WeightedResidualSum(), df, truncated);
}

/// The typical within-study variance s² = (k - p) / T, with T the weighted residual trace at tau² = 0,
/// against which I² and H² set tau² (Higgins and Thompson 2002, Statistics in Medicine 21, 1539-1558).
double TypicalVariance(MARegressionCurve& curve, double meanVariance)
{
    const double trace = curve.SumsAt(0.0, true).traceP / curve.Unit();
    return trace * meanVariance >= negligible ? curve.Bounds().residualDf / trace : 0.0;
}

/// Residual Q is that at tau² = 0.
MAResidualHeterogeneity HeterogeneityOf(double tau2, MARegressionCurve& curve, double meanVariance)
{
    MAResidualHeterogeneity residual;
    residual.q = curve.SumsAt(0.0, true).yPy;
    residual.df = static_cast<int>(curve.Bounds().residualDf);
    if (residual.df != 0)
        residual.qPValue = ChiSquarePValue(residual.q, residual.df);
    const double least = negligible * meanVariance;
    const double typicalVariance = TypicalVariance(curve, meanVariance);
    const MAHeterogeneityMeasures measures = HeterogeneityFromTau2(tau2, typicalVariance);
    residual.i2 = tau2 + typicalVariance < least ? 0.0 : measures.i2;
    residual.h2 = typicalVariance < least ? 0.0 : measures.h2;
    return residual;
}

/// R²: the part of the between-study variance that the predictors take away; 0 when they do not.
double ExplainedPart(double tau2, const MADesignMatrix& design)
{
    const MATau2Estimate without = EstimateTau2WithoutPredictors(design);
    if (without.status.IsError() || !(without.tau2 >= negligible * design.MeanVariance()))
        return 0.0;
    return std::max(0.0, (without.tau2 - tau2) / without.tau2);
}

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
    results.residual = HeterogeneityOf(results.tau2, curve, task.design.MeanVariance());
    if (results.residual.df == 0)
        build.Passed(KXStatus(MAStatusCode::NO_RESIDUAL_DF, true));
    results.rSquare = ExplainedPart(results.tau2, task.design);
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
