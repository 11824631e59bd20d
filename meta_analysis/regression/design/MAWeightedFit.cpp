#include "meta_analysis/regression/design/MAWeightedFit.h"

#include "meta_analysis/platform/common/Square.h"

#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// A smaller 1 - h is computed by basic rows.
constexpr double smallestComplement = 0.125;

} // namespace

void MAWeightedFit::Fit(const Values& weights, bool withSquares)
{
    given_ = &weights;
    basic_ = MABasicRows();
    Solve(withSquares);
    if (!(smallestPivot_ >= smallestShare))
        FitAboutBasicRows(weights, withSquares);
}

void MAWeightedFit::FitAboutBasicRows(const Values& weights, bool withSquares)
{
    given_ = &weights;
    basic_ = ChooseBasicRows(*columns_, weights);
    Solve(withSquares);
}

MAProjectionSums MAWeightedFit::FitAndSum(const Values& weights, bool withTraces, bool withCubic)
{
    Fit(weights, withTraces);
    const MAProjectionSums sums = Sums(withTraces, withCubic);
    if (HasBasicRows() || IsExact(sums, withTraces))
        return sums;
    FitAboutBasicRows(weights, withTraces);
    return Sums(withTraces, withCubic);
}

/// Whether each sum is a large enough part of the sums that it is a difference of. That of the residuals is
/// y'WWy; a residual's error counts in each of the two factors.
bool MAWeightedFit::IsExact(const MAProjectionSums& sums, bool withTraces) const
{
    double uncorrected = withTraces ? squaredProducts_.Get(Rank(), Rank()) : 0.0;
    for (std::size_t i = 0; !withTraces && i < given_->size(); ++i)
        uncorrected += Square((*given_)[i] * Row(i)[Rank()]);
    const bool hasResiduals = sums.yPPy >= Square(smallestShare) * uncorrected;
    const bool hasTraces =
        sums.traceP >= smallestShare * sums.weights && sums.tracePP >= smallestShare * sums.squaredWeights;
    return hasResiduals && (!withTraces || hasTraces);
}

void MAWeightedFit::Solve(bool withSquares)
{
    FormCrossProducts(withSquares);
    Factorize();
    Invert();
    if (withSquares)
        FormHat();
    fitted_.resize(Rank());
    for (std::size_t j = 0; j < Rank(); ++j)
        fitted_[j] = crossProducts_.Get(Rank(), j);
    SolveTransposed(factor_, fitted_.data());
    SolveUpper(factor_, fitted_.data());
}

void MAWeightedFit::FormCrossProducts(bool withSquares)
{
    crossProducts_.Resize(Rank() + 1);
    squaredProducts_.Resize(withSquares ? Rank() + 1 : 0);
    std::array<double, stretch> squares;
    for (std::size_t first = 0; first < given_->size(); first += stretch) {
        const std::size_t count = std::min(stretch, given_->size() - first);
        crossProducts_.UpdateXX(Row(first), Weights(first), count);
        if (!withSquares)
            continue;
        std::transform(Weights(first), Weights(first) + count, squares.data(), Square);
        squaredProducts_.UpdateXX(Row(first), squares.data(), count);
    }
}

/// Cholesky factorization. A pivot that underflows, as weights can, becomes the smallest normal double: the
/// coefficient is not known then, and its variance the largest.
void MAWeightedFit::Factorize()
{
    if (factor_.Size() != Rank())
        factor_.Resize(Rank());
    smallestPivot_ = 1.0;
    for (std::size_t j = 0; j < Rank(); ++j) {
        for (std::size_t i = 0; i <= j; ++i) {
            const double basic = i == j && HasBasicRows() ? basic_.weights[j] : 0.0;
            const double element = crossProducts_.Get(i, j) + basic;
            double left = element;
            for (std::size_t l = 0; l < i; ++l)
                left -= factor_(l, i) * factor_(l, j);
            if (i < j) {
                factor_(i, j) = left / factor_(i, i);
                continue;
            }
            smallestPivot_ = left >= smallestPivot_ * element ? smallestPivot_ : left / element;
            factor_(j, j) = std::sqrt(left > 0.0 ? left : std::numeric_limits<double>::min());
        }
    }
}

void MAWeightedFit::Invert()
{
    inverse_.Resize(Rank());
    for (std::size_t j = 0; j < Rank(); ++j) {
        column_.assign(Rank(), 0.0);
        column_[j] = 1.0;
        SolveTransposed(factor_, column_.data());
        SolveUpper(factor_, column_.data());
        for (std::size_t i = j; i < Rank(); ++i)
            inverse_.Set(i, j, column_[i]);
    }
}

void MAWeightedFit::ComputeResiduals(std::size_t first, std::size_t count, double* residuals) const
{
    const double* const rows = Row(first);
    const double* const fitted = fitted_.data();
    WithUnrolledSize(Rank() + 1, [=](auto size) {
        for (std::size_t i = 0; i < count; ++i) {
            const double* const row = rows + i * size;
            double explained = 0.0;
            for (std::size_t j = 0; j + 1 < size; ++j)
                explained += row[j] * fitted[j];
            residuals[i] = row[size - 1] - explained;
        }
    });
}

void MAWeightedFit::ComputeComplements(std::size_t first, std::size_t count, double* complements) const
{
    inverse_.QuadraticForms(Row(first), Rank() + 1, count, complements);
    const double* const weights = Weights(first);
    for (std::size_t i = 0; i < count; ++i)
        complements[i] = 1.0 - complements[i] * weights[i];
    for (std::size_t b = 0; b < basic_.rows.size(); ++b) {
        if (basic_.rows[b] >= first && basic_.rows[b] < first + count)
            complements[basic_.rows[b] - first] = BasicComplement(b, b);
    }
}

/// (GM)_jl.
double MAWeightedFit::BasicComplement(std::size_t j, std::size_t l) const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < Rank(); ++i)
        sum += crossProducts_.Get(j, i) * inverse_.Get(i, l);
    return sum;
}

void MAWeightedFit::LeverageComplements(Values& complements)
{
    complements.resize(given_->size());
    const auto collect = [&] {
        for (std::size_t first = 0; first < complements.size(); first += stretch)
            ComputeComplements(first, std::min(stretch, complements.size() - first),
                               complements.data() + first);
    };
    collect();
    const auto isSmall = [](double complement) { return !(complement >= smallestComplement); };
    if (!HasBasicRows() && std::any_of(complements.begin(), complements.end(), isSmall)) {
        FitAboutBasicRows(*given_, false);
        collect();
    }
}

/// MJ with J = U'W²U.
void MAWeightedFit::FormHat()
{
    hat_.Resize(Rank());
    for (std::size_t i = 0; i < Rank(); ++i) {
        for (std::size_t j = 0; j < Rank(); ++j) {
            for (std::size_t l = 0; l < Rank(); ++l)
                hat_(i, j) += inverse_.Get(i, l) * squaredProducts_.Get(l, j);
        }
    }
}

/// (MJM)_jj.
double MAWeightedFit::HatSquare(std::size_t j) const
{
    double sum = 0.0;
    for (std::size_t l = 0; l < Rank(); ++l)
        sum += hat_(j, l) * inverse_.Get(l, j);
    return sum;
}

/// w²(1 - 2h + m'(J + B²)m) with m = Mu; for a basic row the sum of squares of its columns of P_NB and P_BB.
double MAWeightedFit::SquaredProjection(std::size_t row) const
{
    const auto found = std::find(basic_.rows.begin(), basic_.rows.end(), row);
    if (found != basic_.rows.end()) {
        const auto basic = static_cast<std::size_t>(found - basic_.rows.begin());
        double sum = Square(basic_.weights[basic]) * HatSquare(basic);
        for (std::size_t l = 0; l < Rank(); ++l)
            sum += Square(BasicComplement(basic, l) * basic_.weights[l]);
        return sum;
    }
    Values solved(Row(row), Row(row) + Rank());
    SolveTransposed(factor_, solved.data());
    const double weight = (*given_)[row];
    double sum = 1.0 - 2.0 * weight * Dot(solved.data(), solved.data(), Rank());
    SolveUpper(factor_, solved.data());
    for (std::size_t i = 0; i < Rank(); ++i) {
        for (std::size_t j = 0; j < Rank(); ++j)
            sum += solved[i] * squaredProducts_.Get(i, j) * solved[j];
        sum += HasBasicRows() ? Square(basic_.weights[i] * solved[i]) : 0.0;
    }
    return Square(weight) * sum;
}

/// With basic rows g follows from the fitted values there, y_B + a = Z_B g = L E g.
void MAWeightedFit::Coordinates(Values& coordinates) const
{
    if (!HasBasicRows()) {
        coordinates = fitted_;
        return;
    }
    const std::size_t p = Rank();
    Values shares(p);
    for (std::size_t b = 0; b < p; ++b)
        shares[b] = columns_->Row(basic_.rows[b])[p] + fitted_[b];
    SolveTransposed(basic_.basis, shares.data());
    coordinates.assign(p, 0.0);
    for (std::size_t s = 0; s < p; ++s) {
        for (std::size_t j = 0; j < p; ++j)
            coordinates[j] += shares[s] * basic_.directions(s, j);
    }
}

/// With basic rows it is the triangular factor of (R_S L) E, not of its cross products.
void MAWeightedFit::Factor(MASquareMatrix& factor) const
{
    factor = !HasBasicRows()
                 ? factor_
                 : TriangularFactor(Product(Product(factor_, Transposed(basic_.basis)), basic_.directions));
}

double MAWeightedFit::LogDeterminant() const
{
    double sum = 0.0;
    for (std::size_t j = 0; j < Rank(); ++j)
        sum += std::log(factor_(j, j)) + (HasBasicRows() ? std::log(std::abs(basic_.basis(j, j))) : 0.0);
    return 2.0 * sum;
}

} // namespace MA_NAMESPACE
