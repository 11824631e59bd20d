#include "meta_analysis/pooling/MARegressionCurve.h"

#include "meta_analysis/pooling/MALogSum.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

MARegressionCurve::MARegressionCurve(const MAOrthonormalColumns& columns,
                                     const std::vector<double>& variances, MALikelihoodType type)
    : columns_(&columns), variances_(&variances), fit_(columns)
{
    Restart(type);
}

void MARegressionCurve::Restart(MALikelihoodType type)
{
    type_ = type;
    weights_.resize(variances_->size());
    Forget();
    leftOut_.clear();
    unit_ = 1.0;
    bounds_ = {};
    const auto count = static_cast<double>(variances_->size());
    bounds_.residualDf = count - static_cast<double>(columns_->Rank());
    bounds_.traceSize = type == MALikelihoodType::Full ? count : bounds_.residualDf;
    if (!variances_->empty())
        MeasureBounds();
}

void MARegressionCurve::MeasureBounds()
{
    double smallest = variances_->front();
    double largest = smallest;
    for (const double variance : *variances_) {
        smallest = std::min(smallest, variance);
        largest = std::max(largest, variance);
    }
    unit_ = PowerOf4Below(smallest);
    bounds_.minVariance = smallest / unit_;
    bounds_.maxVariance = largest / unit_;
    bounds_.residualSum = columns_->ResidualSum() / unit_;
}

void MARegressionCurve::Weigh(double t)
{
    const double* const variances = variances_->data();
    double* const weights = weights_.data();
    const double unit = unit_;
    const double shift = t * unit;
    const std::size_t count = weights_.size();
    for (std::size_t i = 0; i < count; ++i)
        weights[i] = unit / (variances[i] + shift);
}

MAProjectionSums MARegressionCurve::SumsAt(double t, bool withTraces, bool withCubic)
{
    for (const Evaluation& known : {last_, atZero_}) {
        if (known.t == t && known.withTraces >= withTraces && known.withCubic >= withCubic)
            return known.sums;
    }
    last_ = EvaluationAt(t, withTraces, withCubic);
    if (t == 0.0)
        atZero_ = last_;
    return last_.sums;
}

MARegressionCurve::Evaluation MARegressionCurve::EvaluationAt(double t, bool withTraces, bool withCubic)
{
    for (const Evaluation& known : known_) {
        if (known.t == t && known.withTraces == withTraces && known.withCubic == withCubic)
            return known;
    }
    return {t, withTraces, withCubic, true, Evaluate(t, withTraces, withCubic)};
}

MAProjectionSums MARegressionCurve::Evaluate(double t, bool withTraces, bool withCubic)
{
    Weigh(t);
    MAProjectionSums sums = fit_.FitAndSum(weights_, withTraces, withCubic);
    sums.yPy /= unit_;
    sums.yPPy /= unit_;
    sums.yPPPy /= unit_;
    if (!leftOut_.empty())
        LeaveOut(sums, withTraces);
    return sums;
}

void MARegressionCurve::LeaveOutUpTo(double variance)
{
    leftOut_.clear();
    Forget();
    for (std::size_t i = 0; i < variances_->size(); ++i) {
        if (!((*variances_)[i] > variance))
            leftOut_.push_back(i);
    }
}

/// The sums of weights are added up without such a row, beside which all others are rounding; the terms of P,
/// in which none dominates, are subtracted.
void MARegressionCurve::LeaveOut(MAProjectionSums& sums, bool withTraces) const
{
    std::vector<double> complements;
    if (withTraces)
        MAWeightedFit(fit_).LeverageComplements(complements);
    std::vector<double> counted = weights_;
    fit_.VisitRows(false, [&](const MAFittedRows& rows) {
        for (const std::size_t row : leftOut_) {
            if (row < rows.first || row >= rows.first + rows.count)
                continue;
            const double weight = weights_[row];
            const double residual = rows.residuals[row - rows.first];
            counted[row] = 0.0;
            sums.yPy -= weight * residual * residual / unit_;
            sums.yPPy -= weight * residual * weight * residual / unit_;
            if (withTraces) {
                sums.traceP -= weight * complements[row];
                sums.tracePP -= fit_.SquaredProjection(row);
            }
        }
    });
    sums.count -= static_cast<double>(leftOut_.size());
    sums.weights = sums.squaredWeights = 0.0;
    for (const double weight : counted) {
        sums.weights += weight;
        sums.squaredWeights += weight * weight;
    }
}

MALikelihoodTerms MARegressionCurve::At(double t)
{
    const bool isRestricted = type_ == MALikelihoodType::Restricted;
    return TermsOf(SumsAt(t, isRestricted, true), type_);
}

MALikelihoodTerms TermsOf(const MAProjectionSums& sums, MALikelihoodType type)
{
    const bool isRestricted = type == MALikelihoodType::Restricted;
    return {sums.yPPy, -2.0 * sums.yPPPy, isRestricted ? sums.traceP : sums.weights,
            isRestricted ? -sums.tracePP : -sums.squaredWeights};
}

MAGeneralizedQ MARegressionCurve::QAt(double t)
{
    const MAProjectionSums sums = SumsAt(t, false);
    return {sums.yPy, -sums.yPPy};
}

/// ML: -(1/2) [sum log(v + t) + y'Py + k log 2π]. REML: the same with k - p in place of k, and
/// log det X'WX - log det X'X = log det Z'WZ added within the brackets.
double MARegressionCurve::LogLikelihood(double t)
{
    if (last_.t != t)
        last_ = {t, false, false, true, Evaluate(t, false, false)};
    if (!last_.isFitted)
        last_ = {t, last_.withTraces, last_.withCubic, true, Evaluate(t, last_.withTraces, last_.withCubic)};
    const double q = last_.sums.yPy;
    double twice = LogDeterminant() + bounds_.traceSize * (logTwoPi + std::log(unit_)) + q;
    if (type_ == MALikelihoodType::Restricted)
        twice += fit_.LogDeterminant();
    return -0.5 * twice;
}

/// Sum of log(v + t).
double MARegressionCurve::LogDeterminant() const
{
    const double smallest = weights_.empty() ? 1.0 : *std::min_element(weights_.begin(), weights_.end());
    return -SumOfLogs(weights_.size(), smallest > 1e-35, [&](std::size_t i) { return weights_[i]; });
}

} // namespace MA_NAMESPACE
