#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/pooling/MATau2Steps.h"
#include "meta_analysis/settings/Guarded.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Mean of the effect sizes with weights 1 / (v + t), and the sum of these weights.
struct MATAU2ESTIMATIOR::WeightedMean
{
    double mean;
    double weightSum;
};

MATAU2ESTIMATIOR::MATAU2ESTIMATIOR() = default;
MATAU2ESTIMATIOR::MATAU2ESTIMATIOR(const MATAU2ESTIMATIOR&) = default;
MATAU2ESTIMATIOR& MATAU2ESTIMATIOR::operator=(const MATAU2ESTIMATIOR&) = default;
MATAU2ESTIMATIOR::~MATAU2ESTIMATIOR() = default;

KXStatus MATAU2ESTIMATIOR::SetEffectSizes(const std::vector<double>* effectSizes)
{
    return StoreStudyVector(effectSizes, effectSizes_, studyCount_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetVariances(const std::vector<double>* variances)
{
    return StoreStudyVector(variances, variances_, studyCount_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetNonRedundantParamSize(int size)
{
    if (!status_.IsError() && size > parameterCount_)
        return status_ = KXStatus(MAStatusCode::TOO_MANY_NONREDUNDANT);
    return StoreSetting(size, nonRedundantCount_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetMaxIter(int maxIter)
{
    return StoreSetting(maxIter, maxIter_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetMaxStepHalving(int maxStepHalving)
{
    return StoreSetting(maxStepHalving, maxStepHalving_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetConverTol(double tolerance)
{
    return StoreSetting(tolerance, tolerance_, status_);
}

KXStatus MATAU2ESTIMATIOR::SetTau2Search(MAConst::TAU2SEARCH search)
{
    return StoreSetting(search, search_, status_);
}

KXStatus MATAU2ESTIMATIOR::ComputeTau2Variance(MAConst::TAU2ESTIMATOR type)
{
    if (status_.IsError())
        return status_;
    convergence_ = MAConst::TAU2_CLOSED_FORM;
    evaluations_ = 0;
    return Guarded(status_, [&] { return UsesRegression() ? ComputeRegression(type) : ComputePlain(type); });
}

KXStatus MATAU2ESTIMATIOR::ComputePlain(MAConst::TAU2ESTIMATOR type)
{
    if (type < MAConst::TAU2_HE || type > MAConst::TAU2_EB)
        return status_;
    if (effectSizes_ == nullptr || variances_ == nullptr)
        return status_ = KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    if (!HaveLength(studyCount_, effectSizes_, variances_))
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);

    switch (type) {
    case MAConst::TAU2_HE:
        HEEstimator();
        break;
    case MAConst::TAU2_HS:
        HSEstimator();
        break;
    case MAConst::TAU2_DL:
        DLEstimator();
        break;
    case MAConst::TAU2_SJ:
        SJEstimator();
        break;
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        if (search_ == MAConst::TAU2_SEARCH_GLOBAL)
            EstimateBySearch(type);
        else
            EstimateByScoring(type);
        break;
    default:
        break;
    }
    return status_;
}

void MATAU2ESTIMATIOR::CalcMeanES()
{
    double sum = 0.0;
    for (const double y : *effectSizes_)
        sum += y;
    meanEffectSize_ = studyCount_ < 1 ? 0.0 : sum / static_cast<double>(studyCount_);
}

/// The weights of the mean carry the factor t, which cancels but keeps them of order 1 for any t > 0.
MATAU2ESTIMATIOR::WeightedMean MATAU2ESTIMATIOR::CalcEstES(double t) const
{
    const double factor = t == 0.0 ? 1.0 : t;
    const double* const y = effectSizes_->data();
    const double* const v = variances_->data();
    double sum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double weight = factor / (t + v[i]);
        sum += weight;
        weightedSum += weight * y[i];
    }
    return {weightedSum / sum, sum / factor};
}

/// Expectation of the unweighted sum of squares (Hedges 1983, Psychological Bulletin 93, 388-395).
void MATAU2ESTIMATIOR::HEEstimator()
{
    tau2_ = 0.0;
    if (studyCount_ < 2)
        return;
    CalcMeanES();
    const auto k = static_cast<double>(studyCount_);
    double residualSum = 0.0;
    double varianceSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        residualSum += Square((*effectSizes_)[i] - meanEffectSize_);
        varianceSum += (*variances_)[i];
    }
    tau2_ = TruncateAtZero(residualSum / (k - 1.0) - varianceSum / k);
}

/// (Q - k) / sum(1 / v) with the fixed-effect Q (Hunter and Schmidt 1990, Methods of Meta-Analysis).
void MATAU2ESTIMATIOR::HSEstimator()
{
    const WeightedMean fixed = CalcEstES(0.0);
    double q = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i)
        q += Square((*effectSizes_)[i] - fixed.mean) / (*variances_)[i];
    tau2_ = TruncateAtZero((q - static_cast<double>(studyCount_)) / fixed.weightSum);
}

/// (Q - (k - 1)) / c with c = sum(w) - sum(w²) / sum(w), w = 1 / v, and 0 when c is 0.
/// DerSimonian and Laird (1986), Controlled Clinical Trials 7, 177-188.
void MATAU2ESTIMATIOR::DLEstimator()
{
    const WeightedMean fixed = CalcEstES(0.0);
    double q = 0.0;
    const double inverseSum = 1.0 / fixed.weightSum;
    double share = 0.0; // of the weights so far
    double pairSum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double weight = 1.0 / (*variances_)[i];
        q += weight * Square((*effectSizes_)[i] - fixed.mean);
        pairSum += weight * share;
        share += weight * inverseSum;
    }
    // sum(w) - sum(w²) / sum(w) as twice the sum of the products of all pairs: the difference would cancel
    // when one weight dominates. As products with shares they neither overflow nor vanish in any unit.
    const double c = 2.0 * pairSum;
    tau2_ = c == 0.0 ? 0.0 : TruncateAtZero((q - (static_cast<double>(studyCount_) - 1.0)) / c);
}

/// One step from the crude variance of the effects (Sidik and Jonkman 2005, Applied Statistics 54, 367-384).
void MATAU2ESTIMATIOR::SJEstimator()
{
    CalcMeanES();
    const auto k = static_cast<double>(studyCount_);
    double crude = 0.0;
    for (const double y : *effectSizes_)
        crude += Square(y - meanEffectSize_);
    crude /= k;

    const WeightedMean weighted = CalcEstES(crude);
    double sum = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i)
        sum += Square((*effectSizes_)[i] - weighted.mean) * (crude / (crude + (*variances_)[i]));
    tau2_ = studyCount_ == 1 ? 0.0 : TruncateAtZero(sum / (k - 1.0));
}

/// P = W - W 1 1' W / sum(w) has the diagonal w (sum(w) - w) / sum(w). The traces are taken as sums of
/// positive terms, over the diagonal and over pairs of studies: written with leverages they would cancel
/// where one weight dominates, and for one study leave a quotient of rounding errors in place of 0.
MATAU2ESTIMATIOR::StepSums MATAU2ESTIMATIOR::PlainSums() const
{
    const WeightedMean weighted = CalcEstES(tau2_);
    const double inverseSum = 1.0 / weighted.weightSum;
    const double* const y = effectSizes_->data();
    const double* const v = variances_->data();
    StepSums sums;
    double pairs = 0.0;
    double squaredPairs = 0.0;
    double squaredDiagonal = 0.0;
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double weight = 1.0 / (tau2_ + v[i]);
        pairs += weight * sums.w1;
        squaredPairs += weight * weight * sums.w2;
        squaredDiagonal += Square(weight * (weighted.weightSum - weight) * inverseSum);
        sums.Add(weight, y[i] - weighted.mean);
    }
    sums.traceP = 2.0 * pairs * inverseSum;
    sums.tracePP = squaredDiagonal + 2.0 * squaredPairs * Square(inverseSum);
    return sums;
}

/// ML: the score of the profile likelihood over its information. REML: (y'PPy - tr P) / tr PP with
/// P = W - WX(X'WX)⁻X'W. EB: Morris (1983), Journal of the American Statistical Association 78, 47-55.
double MATAU2ESTIMATIOR::StepFrom(const StepSums& sums, MAConst::TAU2ESTIMATOR type) const
{
    if (type == MAConst::TAU2_ML)
        return (sums.w2r2 - sums.w1) / sums.w2;
    if (type == MAConst::TAU2_EB)
        return (sums.count / (sums.count - nonRedundantCount_) * sums.wr2 - sums.count) / sums.w1;
    return sums.tracePP == 0.0 ? 0.0 : (sums.w2r2 - sums.traceP) / sums.tracePP;
}

void MATAU2ESTIMATIOR::EstimateByScoring(MAConst::TAU2ESTIMATOR type)
{
    HEEstimator();
    Tau2IterEstimation(type, [this] { return PlainSums(); });
}

void MATAU2ESTIMATIOR::EstimateBySearch(MAConst::TAU2ESTIMATOR type)
{
    MAPooledCurve curve(effectSizes_->data(), variances_->data(), studyCount_, LikelihoodOf(type));
    StoreSolution(SolveTau2(curve, type, curve.MomentEstimate()), curve.Unit());
    if (convergence_ == MAConst::TAU2_STEP_NOT_FINITE)
        HEEstimator();
}

void MATAU2ESTIMATIOR::StoreSolution(const MATau2Solution& solution, double unit)
{
    tau2_ = solution.t * unit;
    evaluations_ = solution.evaluations;
    convergence_ = std::isfinite(tau2_) ? MAConst::TAU2_GLOBAL_OPTIMUM : MAConst::TAU2_STEP_NOT_FINITE;
}

/// Moves tau² by the step, halved until tau² stays >= 0, at most one time more than the limit. False, tau²
/// unchanged and the reason recorded, when that does not help.
bool MATAU2ESTIMATIOR::TakeStep(double step)
{
    double fraction = step;
    for (int halvings = 0; std::isfinite(fraction); ++halvings) {
        const double candidate = tau2_ + fraction;
        if (candidate >= 0.0) {
            tau2_ = candidate;
            return true;
        }
        if (halvings > maxStepHalving_) {
            convergence_ = MAConst::TAU2_STEP_HALVING_FAILED;
            return false;
        }
        fraction *= 0.5;
    }
    convergence_ = MAConst::TAU2_STEP_NOT_FINITE;
    return false;
}

} // namespace MA_NAMESPACE
