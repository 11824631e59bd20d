#include "meta_analysis/regression/MARegFit.h"

#include "meta_analysis/effectsize/MATestPValues.h"
#include "meta_analysis/platform/common/KXMathFun.h"
#include "meta_analysis/platform/common/UnrolledSize.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// Below it a dispersion counts as zero: the fit is exact. Weighted residuals are of order 1 when a model
/// fits, and the square of the rounding error of one is some 1e-32; this leaves room for variances far
/// from 1.
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

double WeightOf(MAWeightMode mode, double tau2, double omegaWeight, double variance)
{
    if (mode == MAWeightMode::FixedEffect)
        return omegaWeight;
    if (mode == MAWeightMode::Unweighted)
        return 1.0;
    return (mode == MAWeightMode::ScaledRandom ? tau2 : 1.0) / (variance + tau2);
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
    squaredCrossProducts_.Resize(withSquares ? rows.columnCount + 1 : 0);
    weights_.resize(rows.Count());
    goodRecords_ = 0;
    for (std::size_t first = 0; first < weights_.size(); first += stretch) {
        const std::size_t count = std::min(stretch, weights_.size() - first);
        WeighRows(first, count);
        crossProducts_.UpdateXX(rows.Row(first), weights_.data() + first, count);
        if (withSquares)
            AddSquares(first, count);
    }
    Solve();
    return progress_.Step() ? KXStatus() : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

/// Members are copied, and good weights counted in their width, so that the loop becomes one of vector
/// instructions: it has a division a row.
void MARegFit::WeighRows(std::size_t first, std::size_t count)
{
    const double* const omegaWeights = design_->Rows().weights.data() + first;
    const double* const variances = design_->Rows().variances.data() + first;
    double* const weights = weights_.data() + first;
    const MAWeightMode mode = mode_;
    const double tau2 = tau2_;
    std::size_t goodCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double weight = WeightOf(mode, tau2, omegaWeights[i], variances[i]);
        const bool isGood = std::isfinite(weight);
        weights[i] = isGood ? weight : 0.0;
        goodCount += isGood ? 1 : 0;
    }
    goodRecords_ += static_cast<int>(goodCount);
}

void MARegFit::AddSquares(std::size_t first, std::size_t count)
{
    std::array<double, stretch> squares;
    for (std::size_t i = 0; i < count; ++i)
        squares[i] = weights_[first + i] * weights_[first + i];
    squaredCrossProducts_.UpdateXX(design_->Rows().Row(first), squares.data(), count);
}

void MARegFit::Solve()
{
    crossProducts_.SweepOnMany(columns_, design_->GetSettings().GetComputationalTolerance(), nonRedundant_);
    inverse_ = crossProducts_.GetSweptInverse(nonRedundant_);
    std::vector<double> coefficients;
    crossProducts_.GetRegCoeffs(nonRedundant_, coefficients);
    SetCoefficients(std::move(coefficients));
}

void MARegFit::SetCoefficients(std::vector<double> coefficients)
{
    coefficients_ = std::move(coefficients);
    effective_ = coefficients_;
    for (double& coefficient : effective_) {
        if (KXMV::IsMissing(coefficient))
            coefficient = 0.0;
    }
}

/// b + M X'W(y - Xb), the residuals from the rows themselves. Björck (1987), Linear Algebra and its
/// Applications 88/89, 31-48.
void MARegFit::RefineCoefficients()
{
    std::vector<double> unexplained(coefficients_.size(), 0.0); // X'W(y - Xb)
    VisitRows(false, [&](const MAFittedRows& rows) {
        for (std::size_t i = 0; i < rows.count; ++i) {
            const double* const predictors = design_->Rows().Row(rows.first + i);
            const double residual = rows.weights[i] * rows.residuals[i];
            for (std::size_t j = 0; j < unexplained.size(); ++j)
                unexplained[j] += predictors[j] * residual;
        }
    });
    std::vector<double> refined = coefficients_;
    for (std::size_t i = 0; i < refined.size(); ++i) {
        for (std::size_t j = 0; nonRedundant_.Test(i) && j < refined.size(); ++j)
            refined[i] += inverse_.Get(i, j) * unexplained[j];
    }
    const bool isFinite =
        std::all_of(refined.begin(), refined.end(), [](double value) { return std::isfinite(value); });
    if (isFinite) // at the ends of the numbers' range the correction can overflow
        SetCoefficients(std::move(refined));
}

double MARegFit::FittedValue(const double* predictors) const
{
    return std::inner_product(effective_.begin(), effective_.end(), predictors, 0.0);
}

void MARegFit::ComputeResiduals(std::size_t first, std::size_t count, double* residuals) const
{
    const double* rows = design_->Rows().Row(first);
    const double* coefficients = effective_.data();
    WithUnrolledSize(effective_.size(), [=](auto size) {
        for (std::size_t i = 0; i < count; ++i) {
            const double* row = rows + i * (size + 1);
            double fitted = 0.0;
            for (std::size_t j = 0; j < size; ++j)
                fitted += row[j] * coefficients[j];
            residuals[i] = row[size] - fitted;
        }
    });
}

/// The leverage of a row that dominates is all but 1, and a large weight makes the error of its complement a
/// large one in sums of w (1 - h).
void MARegFit::ComputeLeverageComplements(std::size_t first, std::size_t count, double* complements) const
{
    const MADesignRows& rows = design_->Rows();
    inverse_.QuadraticForms(rows.Row(first), rows.columnCount + 1, count, complements);
    for (std::size_t i = 0; i < count; ++i) {
        const double leverage = complements[i] * weights_[first + i];
        complements[i] = leverage > 0.5 ? ComplementFromOtherRows(first + i) : 1.0 - leverage;
    }
}

/// 1 - h = 1 / (1 + w x'M x) with M of the fit without the row (Sherman and Morrison 1950, Annals of
/// Mathematical Statistics 21, 124-127); 0 for a row that alone determines a coefficient.
double MARegFit::ComplementFromOtherRows(std::size_t row) const
{
    const MADesignRows& rows = design_->Rows();
    KXSymMatrix others(rows.columnCount + 1);
    others.UpdateXX(rows.Row(0), weights_.data(), row);
    others.UpdateXX(rows.Row(row) + rows.columnCount + 1, weights_.data() + row + 1,
                    weights_.size() - row - 1);
    KXBitSet determined;
    others.SweepOnMany(columns_, design_->GetSettings().GetComputationalTolerance(), determined);
    if (determined.Count() < nonRedundant_.Count())
        return 0.0;
    double spread = 0.0;
    others.GetSweptInverse(determined).QuadraticForms(rows.Row(row), rows.columnCount + 1, 1, &spread);
    return 1.0 / (1.0 + weights_[row] * spread);
}

std::vector<double> MARegFit::LeverageComplements() const
{
    std::vector<double> complements(weights_.size());
    ComputeLeverageComplements(0, complements.size(), complements.data());
    return complements;
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
    VisitRows(false, [&sum](const MAFittedRows& rows) {
        for (std::size_t i = 0; i < rows.count; ++i)
            sum += rows.weights[i] * rows.residuals[i] * rows.residuals[i];
    });
    return sum;
}

double MARegFit::WeightedResidualTrace() const
{
    double trace = 0.0;
    VisitRows(true, [&trace](const MAFittedRows& rows) {
        for (std::size_t i = 0; i < rows.count; ++i)
            trace += rows.weights[i] * rows.leverageComplements[i];
    });
    return trace;
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
    const double alpha = 1.0 - design_->GetSettings().GetConfidenceLevel();
    if (!useStudentT)
        return TwoSidedNormalQuantile(alpha);
    return ResidualDf() == 0 ? 0.0 : TwoSidedTQuantile(alpha, ResidualDf());
}

void MARegFit::ComputeCoefficientTests(bool useStudentT)
{
    const std::size_t count = coefficients_.size();
    for (std::vector<double>* list : {&stdErrors_, &statistics_, &lowerLimits_, &upperLimits_})
        list->assign(count, KXMV::Missing());
    pValues_.assign(count, MAPValue());
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
        if (!useStudentT)
            pValues_[j] = TwoSidedNormalPValue(statistics_[j]);
        else if (ResidualDf() != 0)
            pValues_[j] = TwoSidedTPValue(statistics_[j], ResidualDf());
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
        if (test.df2 != 0)
            test.pValue = FPValue(test.statistic, test.df1, test.df2);
    } else {
        test.statistic = wald / dispersion_;
        test.pValue = ChiSquarePValue(test.statistic, test.df1);
    }
    return test;
}

KXStatus MARegFit::ComputeResidualHeterogeneity()
{
    residualQ_ = WeightedResidualSum();
    if (ResidualDf() == 0)
        return KXStatus(MAStatusCode::NO_RESIDUAL_DF, true);
    residualQPValue_ = ChiSquarePValue(residualQ_, ResidualDf());
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
MAPrediction MARegFit::Predict(const MADesignRow& row, bool hasStudy, double criticalValue) const
{
    MAPrediction prediction;
    if (row.isBad || row.predictors.size() != effective_.size())
        return prediction;
    const double spread = inverse_.QuadraticForm(row.predictors);
    const double weight = WeightOf(mode_, tau2_, row.omegaWeight, 1.0 / row.omegaWeight);
    prediction.fit = FittedValue(row.predictors.data());
    if (hasStudy) {
        prediction.residual = row.dependent - prediction.fit;
        prediction.leverage = spread * weight;
    }
    if (KXMV::IsMissing(scale_))
        return prediction;
    prediction.stdError = std::sqrt(scale_ * spread);
    const double halfWidth = criticalValue * prediction.stdError;
    prediction.ciLower = prediction.fit - halfWidth;
    prediction.ciUpper = prediction.fit + halfWidth;
    if (hasStudy)
        prediction.residualStdError = ResidualStdError(prediction.leverage, weight);
    return prediction;
}

} // namespace MA_NAMESPACE
