#include "meta_analysis/regression/MAREAlgorithm.h"

#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MAKnappHartung.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"
#include "meta_analysis/pooling/MATau2Interval.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAEstimatorCode.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// A variance below this part of the mean within-study variance counts as zero, and so does the inverse of
/// one: squared rounding errors leave less.
constexpr double negligible = 1e-12;

/// Weights of the fit from which Hunter and Schmidt's residuals are taken. Their published estimator has
/// fixed-effect weights here; the unweighted fit makes tau² larger, and with it R² smaller.
constexpr MAWeightMode hunterSchmidtWeights = MAWeightMode::Unweighted;

} // namespace

MAREAlgorithm::MAREAlgorithm(const MARegSettings& settings) : MARegAlgorithm(settings) {}
MAREAlgorithm::~MAREAlgorithm() = default;

int MAREAlgorithm::GetEstTauType() const
{
    return EstimatorOfCode(settings_->GetEstTauType());
}

bool MAREAlgorithm::UsesStudentT() const
{
    return settings_->IsKnapHartAdjust() || settings_->GetTestDistType() == MAConst::TEST_STUDENT_T;
}

KXStatus MAREAlgorithm::BuildModel(MultiPassRecordIter& records)
{
    const KXStatus built = Guarded(status_, [&] { return BuildFrom(records); });
    if (built.IsError())
        ForgetModel();
    return built;
}

KXStatus MAREAlgorithm::BuildFrom(MultiPassRecordIter& records)
{
    if (!Passed(PrepareRows(records)))
        return status_;
    WarnOfSettings(true);
    if (Passed(computeTauSquare()) && Passed(FitModel()))
        FinishBuild(UsesStudentT());
    return status_;
}

KXStatus MAREAlgorithm::FitModel()
{
    fit_ = std::make_unique<MARegFit>(*design_, MAWeightMode::RandomEffects, tau2_);
    if (!Passed(fit_->Fit()))
        return status_;
    if (usedByBubblePlot_)
        return status_;
    if (settings_->IsKnapHartAdjust())
        ScaleByKnappHartung();
    fit_->ComputeCoefficientTests(UsesStudentT());
    // A number outside the enumeration is of no estimator, and has the curve of Q.
    MARegressionCurve curve(design_->Columns(), design_->Rows().variances,
                            LikelihoodOf(static_cast<MAConst::TAU2ESTIMATOR>(GetEstTauType())));
    CheckTau2(curve);
    if (usedByRegBaseTest_)
        return status_;
    TestModel(settings_->IsKnapHartAdjust());
    if (!Passed(MeasureHeterogeneity(curve)))
        return status_;
    MeasureExplained();
    MeasureLikelihood(curve);
    return status_;
}

/// Without residual degrees of freedom there is no factor, and the truncated one is 1.
void MAREAlgorithm::ScaleByKnappHartung()
{
    const bool truncated = settings_->IsTruncAjustValue();
    const int df = fit_->ResidualDf();
    if (df == 0)
        fit_->SetScale(truncated ? 1.0 : KXMV::Missing());
    else
        fit_->SetScale(KnappHartungFactor(fit_->WeightedResidualSum(), df, truncated));
}

/// tau² from the residuals of a fit whose weights depend on the estimator.
KXStatus MAREAlgorithm::computeTauSquare()
{
    tau2_ = 0.0;
    const int estimator = GetEstTauType();
    switch (estimator) {
    case MAConst::TAU2_HS:
        return computeTauFrom(hunterSchmidtWeights, estimator);
    case MAConst::TAU2_DL:
        return computeTauFrom(MAWeightMode::FixedEffect, estimator);
    case MAConst::TAU2_SJ:
        return computeTauFromSJ();
    case unknownEstimator:
        return KXStatus();
    default:
        return computeTauFromHE(estimator);
    }
}

/// Hedges' estimator has an unweighted fit; the iterative ones start from it.
KXStatus MAREAlgorithm::computeTauFromHE(int estimator)
{
    return computeTauFrom(MAWeightMode::Unweighted, estimator);
}

KXStatus MAREAlgorithm::computeTauFrom(MAWeightMode mode, int estimator)
{
    MARegFit fit(*design_, mode);
    const KXStatus fitted = fit.Fit();
    return fitted.IsError() ? fitted : EstimateTau2(fit, estimator, nullptr);
}

/// Sidik and Jonkman's one step from the crude variance of the effects, tau²_0: its weights are those of the
/// fit, tau²_0 / (v + tau²_0).
KXStatus MAREAlgorithm::computeTauFromSJ()
{
    double crude = 0.0;
    const KXStatus started = computeInitTau2(crude);
    if (started.IsError() || crude == 0.0)
        return started;
    MARegFit fit(*design_, MAWeightMode::ScaledRandom, crude);
    const KXStatus fitted = fit.Fit();
    if (fitted.IsError())
        return fitted;
    return EstimateTau2(fit, MAConst::TAU2_SJ, &fit.Weights());
}

KXStatus MAREAlgorithm::EstimateTau2(const MARegFit& fit, int type, const std::vector<double>* variances)
{
    MATAU2ESTIMATIOR estimator;
    estimator.SetDesignMatrix(design_.get());
    estimator.SetRegCoef(&fit.Coefficients());
    estimator.SetNonRedundantParamSize(fit.NonRedundantCount());
    estimator.SetRegResiduals(fit.Residuals());
    estimator.SetDiagHComplement(fit.LeverageComplements());
    if (variances != nullptr)
        estimator.SetVariances(variances);
    SetSearch(estimator);
    const KXStatus estimated = estimator.ComputeTau2Variance(static_cast<MAConst::TAU2ESTIMATOR>(type));
    if (estimated.IsError())
        return estimated;
    tau2_ = estimator.GetBetweenStudyVariannce();
    tau2Results_.convergence = estimator.GetTau2Convergence();
    tau2Results_.evaluations = estimator.GetTau2Evaluations();
    return estimated;
}

/// Warning `TAU2_DOUBTFUL` when scoring missed the estimate that the model is labelled with, which a search
/// proves.
void MAREAlgorithm::CheckTau2(MARegressionCurve& curve)
{
    const auto estimator = static_cast<MAConst::TAU2ESTIMATOR>(GetEstTauType());
    if (!IsIterative(estimator) || tau2Results_.convergence == MAConst::TAU2_GLOBAL_OPTIMUM)
        return;
    const double proved =
        curve.Unit() * SolveTau2(curve, estimator, tau2_ / curve.Unit(), comparingPrecision).t;
    if (IsTau2Off(tau2_, proved, 0.0) && IsTau2Off(tau2_, proved, TypicalVariance(curve)))
        Passed(KXStatus(MAStatusCode::TAU2_DOUBTFUL, true));
}

/// The likelihood at tau², and the interval that goes by it or by Q.
void MAREAlgorithm::MeasureLikelihood(MARegressionCurve& curve)
{
    const int code = GetEstTauType();
    if (code == unknownEstimator || fit_->ResidualDf() < 1)
        return;
    const auto estimator = static_cast<MAConst::TAU2ESTIMATOR>(code);
    const double t = tau2_ / curve.Unit();
    if (HasLikelihood(estimator))
        tau2Results_.information = InformationCriteria(
            curve.LogLikelihood(t), fit_->NonRedundantCount() + 1.0, curve.Bounds().traceSize);
    const MATau2Bounds bounds = Tau2Interval(curve, settings_->GetTau2Interval(), estimator, t,
                                             AlphaOf(settings_->GetConfidenceLevel()));
    tau2Results_.lower = bounds.lower;
    tau2Results_.upper = bounds.upper;
}

/// Crude variance of the effect sizes, with divisor k.
KXStatus MAREAlgorithm::computeInitTau2(double& tau2) const
{
    const MADesignRows& rows = design_->Rows();
    const auto count = static_cast<double>(rows.Count());
    if (rows.Count() == 1)
        return KXStatus(MAStatusCode::ONE_USABLE_STUDY);
    double sum = 0.0;
    for (std::size_t i = 0; i < rows.Count(); ++i)
        sum += rows.Dependent(i);
    const double mean = sum / count;
    double squares = 0.0;
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        const double deviation = rows.Dependent(i) - mean;
        squares += deviation * deviation;
    }
    tau2 = rows.Count() == 0 ? 0.0 : squares / count;
    return KXStatus();
}

/// tau² of the model without predictors.
KXStatus MAREAlgorithm::computeTau2C(double& tau2) const
{
    const MADesignRows& rows = design_->Rows();
    std::vector<double> effectSizes;
    effectSizes.reserve(rows.Count());
    for (std::size_t i = 0; i < rows.Count(); ++i)
        effectSizes.push_back(rows.Dependent(i));
    MATAU2ESTIMATIOR estimator;
    estimator.SetEffectSizes(&effectSizes);
    estimator.SetVariances(&rows.variances);
    SetSearch(estimator);
    const KXStatus estimated =
        estimator.ComputeTau2Variance(static_cast<MAConst::TAU2ESTIMATOR>(GetEstTauType()));
    tau2 = estimator.GetBetweenStudyVariannce();
    return estimated;
}

void MAREAlgorithm::SetSearch(MATAU2ESTIMATIOR& estimator) const
{
    estimator.SetMaxIter(settings_->GetMaxIterations());
    estimator.SetMaxStepHalving(settings_->GetMaxStepHalvingValue());
    estimator.SetConverTol(settings_->GetParameterTolerance());
    estimator.SetTau2Search(settings_->GetTau2Search());
}

/// Residual Q is that at tau² = 0, and so is the typical within-study variance s² = (k - p) / T
/// with T the weighted residual trace, which I² and H² set against tau² (Higgins and Thompson 2002,
/// Statistics in Medicine 21, 1539-1558).
KXStatus MAREAlgorithm::MeasureHeterogeneity(MARegressionCurve& curve)
{
    if (!MAProgress(*settings_, settings_->GetIterProgressListener()).Step())
        return KXStatus(MAStatusCode::ITERATOR_FAILED);
    residualQ_ = curve.SumsAt(0.0, true).yPy;
    residualDf_ = static_cast<int>(curve.Bounds().residualDf);
    if (residualDf_ == 0)
        Passed(KXStatus(MAStatusCode::NO_RESIDUAL_DF, true));
    else
        residualQPValue_ = ChiSquarePValue(residualQ_, residualDf_);

    const double least = negligible * design_->MeanVariance();
    const double typicalVariance = TypicalVariance(curve);
    const MAHeterogeneityMeasures measures = HeterogeneityFromTau2(tau2_, typicalVariance);
    residualI2_ = tau2_ + typicalVariance < least ? 0.0 : measures.i2;
    residualH2_ = typicalVariance < least ? 0.0 : measures.h2;
    return KXStatus();
}

double MAREAlgorithm::TypicalVariance(MARegressionCurve& curve) const
{
    const double trace = curve.SumsAt(0.0, true).traceP / curve.Unit();
    return trace * design_->MeanVariance() >= negligible ? curve.Bounds().residualDf / trace : 0.0;
}

/// R²: the part of the between-study variance that the predictors take away; 0 when they do not.
void MAREAlgorithm::MeasureExplained()
{
    double withoutPredictors = 0.0;
    rSquare_ = 0.0;
    if (!computeTau2C(withoutPredictors).IsError() &&
        withoutPredictors >= negligible * design_->MeanVariance())
        rSquare_ = std::max(0.0, (withoutPredictors - tau2_) / withoutPredictors);
}

KXStatus MAREAlgorithm::Score(const Record& record, double& fit, double& stdError, double& lower,
                              double& upper, double& residual, double& residualStdError,
                              double& leverage) const
{
    return ScoreRecord(record, fit, stdError, lower, upper, residual, residualStdError, leverage);
}

} // namespace MA_NAMESPACE
