#include "meta_analysis/pooling/MADeletionCurve.h"

#include "meta_analysis/platform/common/Cancellation.h"
#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/pooling/MALogSum.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace MA_NAMESPACE {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double UnitOf(const MADeletionRows& rows)
{
    const double smallest = *std::min_element(rows.variances.begin(), rows.variances.end());
    return PowerOf4Below(smallest);
}

/// A unit is a power of 4, so that nothing is rounded.
MADeletionRows InUnit(MADeletionRows rows, double unit)
{
    const double scale = 1.0 / std::sqrt(unit);
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        rows.variances[i] /= unit;
        rows.cells[i * rows.Width() + rows.rank] *= scale;
    }
    return rows;
}

std::vector<double> InUnit(std::vector<double> tau2s, double unit)
{
    for (double& tau2 : tau2s)
        tau2 /= unit;
    return tau2s;
}

/// Σ w² or w³ of the squared residuals e - z'f.
double ResidualForm(const MAMomentSums& sums, std::size_t power, const std::vector<double>& fitted)
{
    const std::size_t p = fitted.size();
    double form = sums(power, p, p);
    for (std::size_t i = 0; i < p; ++i) {
        form -= 2.0 * fitted[i] * sums(power, i, p);
        for (std::size_t j = 0; j < p; ++j)
            form += fitted[i] * fitted[j] * sums(power, i, j);
    }
    return form;
}

} // namespace

MADeletionCurve::MADeletionCurve(const MADeletionRows& rows, std::vector<double> centres,
                                 MALikelihoodType type)
    : sums_(InUnit(rows, UnitOf(rows)), InUnit(std::move(centres), UnitOf(rows))),
      type_(type),
      others_(rows.Width()),
      factor_(rows.rank),
      fitted_(rows.rank),
      work_(rows.rank),
      hat_(rows.rank)
{
    unit_ = UnitOf(rows);
    MeasureBounds();
}

/// The sum of squares about 0 is no smaller than that about the unweighted fit of any of the rows.
void MADeletionCurve::MeasureBounds()
{
    const MADeletionRows& rows = sums_.Rows();
    const auto [least, most] = std::minmax_element(rows.variances.begin(), rows.variances.end());
    bounds_.minVariance = *least;
    bounds_.maxVariance = *most;
    for (std::size_t i = 0; i < rows.Count(); ++i)
        bounds_.residualSum += Square(rows.Row(i)[rows.rank]);
    const double left = static_cast<double>(rows.Count()) - 1.0;
    bounds_.residualDf = left - static_cast<double>(rows.rank);
    bounds_.traceSize = type_ == MALikelihoodType::Full ? left : bounds_.residualDf;
}

void MADeletionCurve::Delete(std::size_t row)
{
    row_ = row;
    isExact_ = true;
}

/// All that is known at t; false where digits are lost.
bool MADeletionCurve::Solve(double t)
{
    const bool isSolved = SumOthers(t) && Factorize(smallestShare) && SolveDependent() && FormTraces();
    isExact_ = isExact_ && isSolved;
    return isSolved;
}

/// What the deleted row has no part in, such as an indicator that is 0 there, keeps all its digits.
bool MADeletionCurve::SumOthers(double t)
{
    sums_.At(t, others_);
    const MADeletionRows& rows = sums_.Rows();
    const double* const row = rows.Row(row_);
    const double weight = 1.0 / (rows.variances[row_] + t);
    double power = 1.0;
    bool isExact = true;
    for (std::size_t n = 0; n < MAMomentSums::powers; ++n) {
        power *= weight;
        double* element = others_.Triangle(n);
        for (std::size_t i = 0; i < rows.Width(); ++i) {
            for (std::size_t j = 0; j < i; ++j)
                *element++ -= power * row[i] * row[j];
            const double all = *element;
            *element -= power * row[i] * row[i];
            isExact = isExact && Keeps(*element++, all);
        }
    }
    return isExact;
}

/// Cholesky factorization of Z'WZ; false when a pivot is less than `least` of its diagonal element.
bool MADeletionCurve::Factorize(double least)
{
    for (std::size_t j = 0; j < Rank(); ++j) {
        for (std::size_t i = 0; i <= j; ++i) {
            double left = others_(0, i, j);
            for (std::size_t l = 0; l < i; ++l)
                left -= factor_(l, i) * factor_(l, j);
            if (i < j) {
                factor_(i, j) = left / factor_(i, i);
                continue;
            }
            if (!(left > 0.0 && left >= least * others_(0, j, j)))
                return false;
            factor_(j, j) = std::sqrt(left);
        }
    }
    return true;
}

bool MADeletionCurve::SolveDependent()
{
    const std::size_t p = Rank();
    for (std::size_t j = 0; j < p; ++j)
        fitted_[j] = others_(0, j, p);
    SolveTransposed(factor_, fitted_.data());
    yPy_ = others_(0, p, p) - Dot(fitted_.data(), fitted_.data(), p);
    SolveUpper(factor_, fitted_.data());
    yPPy_ = ResidualForm(others_, 1, fitted_);
    yPPPy_ = CubicForm();
    return Keeps(yPy_, others_(0, p, p)) && Keeps(yPPy_, others_(1, p, p)) && Keeps(yPPPy_, others_(2, p, p));
}

/// y'PPPy = s'Ps with s = Py, the weighted residuals: their squares less those that a regression takes away.
double MADeletionCurve::CubicForm()
{
    const std::size_t p = Rank();
    for (std::size_t j = 0; j < p; ++j) {
        work_[j] = others_(1, j, p);
        for (std::size_t l = 0; l < p; ++l)
            work_[j] -= others_(1, j, l) * fitted_[l];
    }
    SolveTransposed(factor_, work_.data());
    return ResidualForm(others_, 2, fitted_) - Dot(work_.data(), work_.data(), p);
}

/// With M = (Z'WZ)⁻¹ and J_n = Z'WⁿZ: tr P = tr W - tr MJ_2 and tr PP = tr WW - 2 tr MJ_3 + tr MJ_2MJ_2.
bool MADeletionCurve::FormTraces()
{
    const std::size_t p = Rank();
    const double weights = others_(0, p + 1, p + 1);
    const double squares = others_(1, p + 1, p + 1);
    traceP_ = weights;
    tracePP_ = squares;
    for (std::size_t j = 0; j < p; ++j) {
        for (std::size_t power = 1; power <= 2; ++power) {
            for (std::size_t i = 0; i < p; ++i)
                work_[i] = others_(power, i, j);
            SolveTransposed(factor_, work_.data());
            SolveUpper(factor_, work_.data());
            (power == 1 ? traceP_ : tracePP_) -= static_cast<double>(power) * work_[j];
            for (std::size_t i = 0; power == 1 && i < p; ++i)
                hat_(i, j) = work_[i];
        }
    }
    for (std::size_t i = 0; i < p; ++i)
        for (std::size_t j = 0; j < p; ++j)
            tracePP_ += hat_(i, j) * hat_(j, i);
    return Keeps(traceP_, weights) && Keeps(tracePP_, squares);
}

MALikelihoodTerms MADeletionCurve::At(double t)
{
    if (!Solve(t))
        return {notANumber, notANumber, notANumber, notANumber};
    const bool isFull = type_ == MALikelihoodType::Full;
    const std::size_t one = Rank() + 1;
    return {yPPy_, -2.0 * yPPPy_, isFull ? others_(0, one, one) : traceP_,
            isFull ? -others_(1, one, one) : -tracePP_};
}

MAGeneralizedQ MADeletionCurve::QAt(double t)
{
    if (!Solve(t))
        return {notANumber, notANumber};
    return {yPy_, -yPPy_};
}

/// As that of `MARegressionCurve`, in the units of the coordinates. O(k).
double MADeletionCurve::LogLikelihood(double t)
{
    if (!Solve(t))
        return notANumber;
    const std::vector<double>& variances = sums_.Rows().variances;
    double twice = SumOfLogs(variances.size(), bounds_.maxVariance + t < 1e35,
                             [&](std::size_t i) { return variances[i] + t; }) -
                   std::log(variances[row_] + t) + yPy_ + bounds_.traceSize * (logTwoPi + std::log(unit_));
    for (std::size_t j = 0; j < Rank() && type_ == MALikelihoodType::Restricted; ++j)
        twice += 2.0 * std::log(factor_(j, j));
    return -0.5 * twice;
}

MADeletionFit MADeletionCurve::FitAt(double tau2)
{
    if (!Solve(tau2 / unit_))
        return MADeletionFit();
    MADeletionFit fit = FitInDataUnits();
    const double scale = std::sqrt(unit_);
    fit.fitted = fitted_;
    for (double& coefficient : fit.fitted)
        coefficient *= scale;
    fit.residualSum = yPy_;
    fit.trace = traceP_ / unit_;
    return fit;
}

MADeletionFit MADeletionCurve::FitOfAllAt(double tau2)
{
    sums_.At(tau2 / unit_, others_);
    return Factorize(smallestShare) ? FitInDataUnits() : MADeletionFit();
}

MADeletionFit MADeletionCurve::FitInDataUnits() const
{
    MADeletionFit fit;
    fit.isExact = true;
    fit.weightSum = others_(0, Rank() + 1, Rank() + 1) / unit_;
    fit.factor = factor_;
    for (std::size_t i = 0; i < Rank(); ++i)
        for (std::size_t j = i; j < Rank(); ++j)
            fit.factor(i, j) /= std::sqrt(unit_);
    return fit;
}

} // namespace MA_NAMESPACE
