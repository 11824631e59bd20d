#include "meta_analysis/pooling/MARegressionTau2.h"

#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/pooling/MATau2Steps.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/regression/design/MAProgress.h"

namespace MA_NAMESPACE {

namespace {

/// The iterative estimators leave out rows whose variance is not above this part of the mean variance: such a
/// row would decide alone. (One whose weight is as small beside the others' takes more than 1e12 rows.)
constexpr double negligibleVariance = 1e-12;

std::size_t RowCount(const MATau2Fit& fit)
{
    return fit.design.Rows().Count();
}

double ResidualDf(const MATau2Fit& fit)
{
    return static_cast<double>(RowCount(fit)) - fit.rank;
}

/// The sum of w r² over the rows.
double WeightedResidualSum(const MATau2Fit& fit, std::span<const double> weights)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < RowCount(fit); ++i)
        sum += Square(fit.residuals[i]) * weights[i];
    return sum;
}

MATau2Estimate Hedges(const MATau2Fit& fit)
{
    if (RowCount(fit) != fit.leverageComplements.size())
        return FailedTau2(KXStatus(MAStatusCode::INPUT_NOT_GIVEN));
    if (!(ResidualDf(fit) > 0.0))
        return FailedTau2(KXStatus(MAStatusCode::TOO_FEW_ROWS));
    double sum = 0.0;
    for (std::size_t i = 0; i < RowCount(fit); ++i)
        sum += Square(fit.residuals[i]) - fit.leverageComplements[i] * fit.design.Rows().variances[i];
    return ClosedFormTau2(sum / ResidualDf(fit));
}

MATau2Estimate HunterSchmidt(const MATau2Fit& fit)
{
    const std::span<const double> weights = fit.design.Rows().weights;
    double weightSum = 0.0;
    for (const double weight : weights)
        weightSum += weight;
    const double q = WeightedResidualSum(fit, weights);
    return ClosedFormTau2((q - static_cast<double>(RowCount(fit))) / weightSum);
}

/// Without residual degrees of freedom the divisor is 0 but for rounding, and so is Q.
MATau2Estimate DerSimonianLaird(const MATau2Fit& fit)
{
    if (RowCount(fit) != fit.leverageComplements.size())
        return FailedTau2(KXStatus(MAStatusCode::INPUT_NOT_GIVEN));
    const std::span<const double> weights = fit.design.Rows().weights;
    double divisor = 0.0;
    for (std::size_t i = 0; i < RowCount(fit); ++i)
        divisor += fit.leverageComplements[i] * weights[i];
    const double df = ResidualDf(fit);
    const double q = WeightedResidualSum(fit, weights);
    return ClosedFormTau2(df == 0.0 || divisor == 0.0 ? 0.0 : (q - df) / divisor);
}

MATau2Estimate SidikJonkman(const MATau2Fit& fit)
{
    if (RowCount(fit) != fit.weights.size())
        return FailedTau2(KXStatus(MAStatusCode::INPUT_NOT_GIVEN));
    if (!(ResidualDf(fit) > 0.0))
        return FailedTau2(KXStatus(MAStatusCode::TOO_FEW_ROWS));
    return ClosedFormTau2(WeightedResidualSum(fit, fit.weights) / ResidualDf(fit));
}

/// Refits the regression at tau² and takes the sums of its residuals; of its leverages only where they are
/// needed, for they cost O(p²) a row.
MATau2StepSums StepSumsAt(MARegressionCurve& curve, double tau2, MAConst::TAU2ESTIMATOR estimator)
{
    const MAProjectionSums fitted = curve.SumsAt(tau2 / curve.Unit(), NeedsTraces(estimator));
    MATau2StepSums sums;
    sums.unit = curve.Unit();
    sums.count = fitted.count;
    sums.w1 = fitted.weights;
    sums.w2 = fitted.squaredWeights;
    sums.wr2 = fitted.yPy;
    sums.w2r2 = fitted.yPPy;
    sums.traceP = fitted.traceP;
    sums.tracePP = fitted.tracePP;
    return sums;
}

MATau2Estimate Score(const MATau2Fit& fit, const MATau2Choice& choice, double start, MARegressionCurve& curve)
{
    curve.Restart(MALikelihoodType::Restricted);
    curve.LeaveOutUpTo(negligibleVariance * fit.design.MeanVariance());
    const MARegSettings& settings = fit.design.GetSettings();
    MAProgress progress(settings, settings.GetIterProgressListener());
    return ScoreTau2(start, choice, fit.rank, [&](double tau2) {
        MATau2StepSums sums = StepSumsAt(curve, tau2, choice.estimator);
        sums.isCancelled = !progress.Step();
        return sums;
    });
}

} // namespace

MATau2Estimate SearchTau2(const MATau2Fit& fit, const MATau2Choice& choice, double start,
                          MARegressionCurve& curve)
{
    const MARegSettings& settings = fit.design.GetSettings();
    if (!MAProgress(settings, settings.GetIterProgressListener()).Step())
        return FailedTau2(KXStatus(MAStatusCode::ITERATOR_FAILED));
    MATau2Estimate estimate =
        EstimateOf(SolveTau2(curve, choice.estimator, start / curve.Unit()), curve.Unit());
    if (estimate.convergence == MAConst::TAU2_STEP_NOT_FINITE)
        estimate.tau2 = start;
    return estimate;
}

namespace {

MATau2Estimate IterateOnItsCurve(const MATau2Fit& fit, const MATau2Choice& choice)
{
    MARegressionCurve curve(fit.design.Columns(), fit.design.Rows().variances,
                            LikelihoodOf(choice.estimator));
    return IterateTau2(fit, choice, curve);
}

} // namespace

MATau2Estimate IterateTau2(const MATau2Fit& fit, const MATau2Choice& choice, MARegressionCurve& curve)
{
    const MATau2Estimate start = Hedges(fit);
    if (start.status.IsError())
        return start;
    if (choice.search != MAConst::TAU2_SEARCH_GLOBAL)
        return Score(fit, choice, start.tau2, curve);
    curve.Restart(LikelihoodOf(choice.estimator));
    return SearchTau2(fit, choice, start.tau2, curve);
}

MATau2Estimate EstimateTau2(const MATau2Fit& fit, const MATau2Choice& choice)
{
    switch (choice.estimator) {
    case MAConst::TAU2_HE:
        return Hedges(fit);
    case MAConst::TAU2_HS:
        return HunterSchmidt(fit);
    case MAConst::TAU2_DL:
        return DerSimonianLaird(fit);
    case MAConst::TAU2_SJ:
        return SidikJonkman(fit);
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return IterateOnItsCurve(fit, choice);
    }
    return FailedTau2(KXStatus(MAStatusCode::TAU2_FAILED));
}

} // namespace MA_NAMESPACE
