#include "meta_analysis/regression/MARegFit.h"

#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/platform/common/KXMathFun.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace MA_NAMESPACE {

namespace {

/// Below it a dispersion counts as zero: the fit is exact.
constexpr double negligibleDispersion = 1e-12;

/// The blocks of p x p elements, without the dependent's row.
KXSymMatrix PredictorBlock(const KXSymMatrix& matrix)
{
    KXBitSet predictors(matrix.Size());
    for (std::size_t i = 0; i + 1 < matrix.Size(); ++i)
        predictors.Set(i);
    return matrix.ExtractSubmatrix(predictors);
}

/// Trace of the product of two symmetric matrices of one size.
double TraceOfProduct(const KXSymMatrix& left, const KXSymMatrix& right)
{
    double trace = 0.0;
    for (std::size_t i = 0; i < left.Size(); ++i) {
        for (std::size_t j = 0; j < i; ++j)
            trace += 2.0 * left.Get(i, j) * right.Get(i, j);
        trace += left.Get(i, i) * right.Get(i, i);
    }
    return trace;
}

} // namespace

MARegFit::MARegFit(const MADesignMatrix& design, MAWeightMode mode, double tau2)
    : design_(&design),
      mode_(mode),
      tau2_(tau2),
      progress_(design.GetSettings(), design.GetSettings().GetIterProgressListener()),
      columns_(static_cast<std::size_t>(design.GetParamSize()))
{
    std::iota(columns_.begin(), columns_.end(), std::size_t{0});
}

double MARegFit::WeightOf(double omegaWeight) const
{
    switch (mode_) {
    case MAWeightMode::Unweighted:
        return 1.0;
    case MAWeightMode::OmegaByTau2:
        return omegaWeight == 0.0 ? KXMV::Missing() : 1.0 / (omegaWeight * tau2_);
    case MAWeightMode::ScaledRandom:
        return omegaWeight == 0.0 ? KXMV::Missing() : tau2_ / (1.0 / omegaWeight + tau2_);
    case MAWeightMode::RandomEffects:
        return omegaWeight == 0.0 ? KXMV::Missing() : 1.0 / (1.0 / omegaWeight + tau2_);
    case MAWeightMode::FixedEffect:
        break;
    }
    return omegaWeight;
}

/// Calls `visit(row, weight)` for the rows whose weight is a finite number.
template <class VisitRow>
void MARegFit::ForEachGoodRow(VisitRow visit) const
{
    const std::size_t count = design_->Rows().Count();
    for (std::size_t i = 0; i < count; ++i) {
        const double weight = Weight(i);
        if (!KXMV::IsMissing(weight) && std::isfinite(weight))
            visit(i, weight);
    }
}

KXStatus MARegFit::Fit()
{
    return FitRows(false);
}

KXStatus MARegFit::FitWithSquares()
{
    return FitRows(true);
}

KXStatus MARegFit::FitRows(bool withSquares)
{
    const MADesignRows& rows = design_->Rows();
    crossProducts_.Resize(rows.columnCount + 1);
    if (withSquares)
        squaredCrossProducts_.Resize(rows.columnCount + 1);
    goodRecords_ = 0;
    ForEachGoodRow([&](std::size_t i, double weight) {
        crossProducts_.UpdateXX(rows.Row(i), weight);
        if (withSquares)
            squaredCrossProducts_.UpdateXX(rows.Row(i), weight * weight);
        ++goodRecords_;
    });
    Solve();
    return progress_.Step() ? KXStatus() : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

void MARegFit::Solve()
{
    crossProducts_.SweepOnMany(columns_, design_->GetSettings().GetComputationalTolerance(), nonRedundant_);
    crossProducts_.GetRegCoeffs(nonRedundant_, coefficients_);
    inverse_ = crossProducts_.GetSweptInverse(nonRedundant_);
    effective_ = coefficients_;
    for (double& coefficient : effective_) {
        if (KXMV::IsMissing(coefficient))
            coefficient = 0.0;
    }
}

double MARegFit::FittedValue(const double* predictors) const
{
    double fit = 0.0;
    for (std::size_t j = 0; j < effective_.size(); ++j)
        fit += predictors[j] * effective_[j];
    return fit;
}

double MARegFit::Residual(std::size_t row) const
{
    const double* cells = design_->Rows().Row(row);
    return cells[effective_.size()] - FittedValue(cells);
}

double MARegFit::Leverage(std::size_t row) const
{
    return Weight(row) * inverse_.QuadraticForm(design_->Rows().Row(row));
}

std::vector<double> MARegFit::Leverages() const
{
    std::vector<double> leverages;
    leverages.reserve(static_cast<std::size_t>(goodRecords_));
    ForEachGoodRow([&](std::size_t i, double) { leverages.push_back(Leverage(i)); });
    return leverages;
}

/// sum(w_i² x_i'N x_i) = tr(N X'W²X) with N = M X'W²X M: no row is visited again.
double MARegFit::SquaredHatTrace() const
{
    const KXSymMatrix squared = PredictorBlock(squaredCrossProducts_);
    return TraceOfProduct(KXSymMatrix::Sandwich(inverse_, squared), squared);
}

double MARegFit::WeightedResidualSum() const
{
    double sum = 0.0;
    ForEachGoodRow([&](std::size_t i, double weight) {
        const double residual = Residual(i);
        sum += weight * residual * residual;
    });
    return sum;
}

double MARegFit::WeightedResidualTrace() const
{
    double trace = 0.0;
    // Rounding can carry a leverage beyond 1, and a large weight its excess to a negative trace.
    ForEachGoodRow([&](std::size_t i, double weight) { trace += weight * std::max(0.0, 1.0 - Leverage(i)); });
    return trace;
}

double MARegFit::KnappHartungFactor() const
{
    return ResidualDf() == 0 ? KXMV::Missing() : WeightedResidualSum() / ResidualDf();
}

KXStatus MARegFit::ComputeDispersion()
{
    dispersion_ = 1.0;
    if (ResidualDf() == 0)
        return KXStatus(MAStatusCode::AS_MANY_STUDIES_AS_PARAMETERS, true);
    const double dispersion = WeightedResidualSum() / ResidualDf();
    if (std::abs(dispersion) < negligibleDispersion)
        return KXStatus(MAStatusCode::DISPERSION_NEAR_ZERO, true);
    dispersion_ = dispersion;
    scale_ = dispersion;
    return KXStatus();
}

/// 0 without residual degrees of freedom for Student's t, so that intervals shrink to a point.
double MARegFit::CriticalValue(bool useStudentT) const
{
    const double probability = 1.0 - (1.0 - design_->GetSettings().GetConfidenceLevel()) * 0.5;
    if (!useStudentT)
        return KXDistFun::IdfNorm(probability, 0.0, 1.0);
    return ResidualDf() == 0 ? 0.0 : KXDistFun::IdfT(probability, ResidualDf(), 1e-20, 1e-12);
}

void MARegFit::ComputeCoefficientTests(bool useStudentT)
{
    const std::size_t count = coefficients_.size();
    for (std::vector<double>* list :
         {&stdErrors_, &statistics_, &significances_, &lowerLimits_, &upperLimits_})
        list->assign(count, KXMV::Missing());
    if (KXMV::IsMissing(scale_))
        return;
    const double critical = CriticalValue(useStudentT);
    for (std::size_t j = 0; j < count; ++j) {
        if (!nonRedundant_.Test(j))
            continue;
        stdErrors_[j] = std::sqrt(scale_ * inverse_.Get(j, j));
        lowerLimits_[j] = coefficients_[j] - critical * stdErrors_[j];
        upperLimits_[j] = coefficients_[j] + critical * stdErrors_[j];
        if (!(stdErrors_[j] > 0.0)) // an exact fit under Knapp and Hartung
            continue;
        statistics_[j] = coefficients_[j] / stdErrors_[j];
        const double magnitude = std::abs(statistics_[j]);
        if (!useStudentT)
            significances_[j] = 2.0 * (1.0 - KXDistFun::CdfStdNorm(magnitude));
        else if (ResidualDf() != 0)
            significances_[j] = 2.0 * (1.0 - KXDistFun::CdfT(magnitude, ResidualDf()));
    }
}

MAModelTest MARegFit::TestModel(bool asF) const
{
    KXBitSet tested = nonRedundant_;
    if (design_->HasIntercept())
        tested.Clear(0);
    MAModelTest test;
    test.df1 = static_cast<int>(tested.Count());
    test.df2 = ResidualDf();
    std::vector<double> coefficients;
    for (std::size_t j = 0; j < coefficients_.size(); ++j) {
        if (tested.Test(j))
            coefficients.push_back(coefficients_[j]);
    }
    KXSymMatrix information;
    if (test.df1 == 0 || !(scale_ > 0.0) || // a missing scale is negative
        !inverse_.ExtractSubmatrix(tested).CholeskyInverse(information))
        return test;
    const double wald = KXMathFun::VSV(coefficients, information);
    if (asF) {
        test.statistic = wald / (scale_ * test.df1);
        test.significance = 1.0 - KXDistFun::CdfF(test.statistic, test.df1, test.df2);
    } else {
        test.statistic = wald / dispersion_;
        test.significance = 1.0 - KXDistFun::CdfChi(test.statistic, test.df1);
    }
    return test;
}

KXStatus MARegFit::ComputeResidualHeterogeneity()
{
    residualQ_ = WeightedResidualSum();
    if (ResidualDf() == 0)
        return KXStatus(MAStatusCode::NO_RESIDUAL_DF, true);
    residualQSignificance_ = 1.0 - KXDistFun::CdfChi(residualQ_, ResidualDf());
    return KXStatus();
}

/// Standard error of the residual of a record with this leverage and weight. Rounding can carry the leverage
/// of a study that alone determines its fitted value beyond 1, by a margin that grows with the condition of
/// the design; beyond that it is the leverage of a record outside the fit, which has no such standard error.
double MARegFit::ResidualStdError(double leverage, double weight) const
{
    constexpr double margin = 1e-6;
    if (!(leverage <= 1.0 + margin))
        return KXMV::Missing();
    return std::sqrt(scale_ * std::max(0.0, 1.0 - leverage) / weight);
}

/// The leverage belongs to the unscaled fit, so that the leverages sum to the number of parameters whatever
/// the scale. Without a scale there is no standard error, but still a fit.
MAPrediction MARegFit::Predict(const MADesignRow& row, bool hasStudy, bool useStudentT) const
{
    MAPrediction prediction;
    if (row.isBad || row.predictors.size() != effective_.size())
        return prediction;
    const double spread = inverse_.QuadraticForm(row.predictors);
    const double weight = WeightOf(row.omegaWeight);
    prediction.fit = FittedValue(row.predictors.data());
    if (hasStudy) {
        prediction.residual = row.dependent - prediction.fit;
        prediction.leverage = spread * weight;
    }
    if (KXMV::IsMissing(scale_))
        return prediction;
    prediction.stdError = std::sqrt(scale_ * spread);
    const double halfWidth = CriticalValue(useStudentT) * prediction.stdError;
    prediction.ciLower = prediction.fit - halfWidth;
    prediction.ciUpper = prediction.fit + halfWidth;
    if (hasStudy)
        prediction.residualStdError = ResidualStdError(prediction.leverage, weight);
    return prediction;
}

} // namespace MA_NAMESPACE
