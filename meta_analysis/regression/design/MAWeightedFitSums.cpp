// Sums over the rows of a weighted fit.

#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/regression/design/MAWeightedFit.h"

#include <array>
#include <type_traits>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// Adds rows to two sums in turn, so that additions do not wait for each other, then both to the total.
template <class Add>
void AddAlternately(std::size_t count, MAProjectionSums& total, Add add)
{
    MAProjectionSums even;
    MAProjectionSums odd;
    for (std::size_t i = 0; i + 1 < count; i += 2) {
        add(even, i);
        add(odd, i + 1);
    }
    if (count % 2 == 1)
        add(even, count - 1);
    total.yPy += even.yPy + odd.yPy;
    total.yPPy += even.yPPy + odd.yPPy;
    total.weights += even.weights + odd.weights;
    total.squaredWeights += even.squaredWeights + odd.squaredWeights;
    total.traceP += even.traceP + odd.traceP;
    total.tracePP += even.tracePP + odd.tracePP;
}

/// A local row of zeros: when its size is a small constant, the compiler keeps it in registers.
template <std::size_t size>
std::array<double, size> ZeroRow(std::integral_constant<std::size_t, size>)
{
    return {};
}
Values ZeroRow(std::size_t size)
{
    return Values(size);
}

} // namespace

/// Sums over the rows that are not basic. With v = Py, s = v - U v_B by basic rows, and s = v without them.
struct MAWeightedFit::RowSums
{
    MAProjectionSums sums;
    Values& shift;        ///< -v_B
    Values& products;     ///< U'Ws
    double squares = 0.0; ///< s'Ws
};

MAProjectionSums MAWeightedFit::Sums(bool withTraces, bool withCubic)
{
    shift_.assign(withCubic ? Rank() : 0, 0.0);
    products_.assign(withCubic ? Rank() : 0, 0.0);
    RowSums rowSums{{}, shift_, products_};
    for (std::size_t b = 0; withCubic && b < basic_.rows.size(); ++b)
        rowSums.shift[b] = basic_.weights[b] * fitted_[b];
    VisitRows(withTraces, [&](const MAFittedRows& rows) {
        AddResiduals(rows, rowSums.sums);
        if (withCubic)
            AddProducts(rows, rowSums);
        if (withTraces)
            AddLeverages(rows, rowSums.sums);
    });
    rowSums.sums.count = static_cast<double>(given_->size());
    if (withCubic)
        rowSums.sums.yPPPy = CubicForm(rowSums);
    AddBasicRows(rowSums.sums);
    if (withTraces)
        AddTraces(rowSums.sums);
    return rowSums.sums;
}

void MAWeightedFit::AddResiduals(const MAFittedRows& rows, MAProjectionSums& total) const
{
    const double* const weights = Weights(rows.first);
    AddAlternately(rows.count, total, [=, residuals = rows.residuals](MAProjectionSums& sums, std::size_t i) {
        const double weight = weights[i];
        const double weighted = weight * residuals[i];
        sums.yPy += weighted * residuals[i];
        sums.yPPy += weighted * weighted;
        sums.weights += weight;
        sums.squaredWeights += weight * weight;
    });
}

/// Adds the terms of `CubicForm`.
void MAWeightedFit::AddProducts(const MAFittedRows& rows, RowSums& total) const
{
    const double* const weights = Weights(rows.first);
    const double* const shift = total.shift.data();
    WithUnrolledSize(Rank() + 1, [&](auto size) {
        auto products = ZeroRow(size);
        double squares = 0.0;
        const double* row = Row(rows.first);
        for (std::size_t i = 0; i < rows.count; ++i, row += size) {
            double s = weights[i] * rows.residuals[i];
            for (std::size_t j = 0; j + 1 < size; ++j)
                s += row[j] * shift[j];
            const double weighted = weights[i] * s;
            squares += weighted * s;
            for (std::size_t j = 0; j + 1 < size; ++j)
                products[j] += weighted * row[j];
        }
        for (std::size_t j = 0; j + 1 < size; ++j)
            total.products[j] += products[j];
        total.squares += squares;
    });
}

void MAWeightedFit::AddLeverages(const MAFittedRows& rows, MAProjectionSums& total) const
{
    const double* const weights = Weights(rows.first);
    AddAlternately(rows.count, total,
                   [=, complements = rows.leverageComplements](MAProjectionSums& sums, std::size_t i) {
                       sums.traceP += complements[i] * weights[i];
                       sums.tracePP += (2.0 * complements[i] - 1.0) * weights[i] * weights[i];
                   });
}

/// y'PPPy = s'(W - WUMU'W)s. Where the difference cancels, it is the residual sum of a regression of s.
double MAWeightedFit::CubicForm(const RowSums& sums) const
{
    const double difference = sums.squares - inverse_.QuadraticForm(sums.products);
    if (difference >= smallestShare * sums.squares)
        return difference;
    const std::size_t p = Rank();
    Values fitted = sums.products;
    SolveTransposed(factor_, fitted.data());
    SolveUpper(factor_, fitted.data());
    double form = 0.0;
    for (std::size_t b = 0; b < basic_.rows.size(); ++b)
        form += basic_.weights[b] * Square(fitted[b]);
    for (std::size_t j = 0; j < p; ++j)
        fitted[j] -= sums.shift[j];
    VisitRows(false, [&](const MAFittedRows& rows) {
        for (std::size_t i = 0; i < rows.count; ++i) {
            const double weight = *Weights(rows.first + i);
            form += weight * Square(weight * rows.residuals[i] - Dot(Row(rows.first + i), fitted.data(), p));
        }
    });
    return form;
}

void MAWeightedFit::AddBasicRows(MAProjectionSums& sums) const
{
    for (std::size_t b = 0; b < basic_.rows.size(); ++b) {
        const double weight = basic_.weights[b];
        sums.weights += weight;
        sums.squaredWeights += Square(weight);
        sums.yPy += weight * Square(fitted_[b]);
        sums.yPPy += Square(weight * fitted_[b]);
    }
}

/// Adds what the terms of the rows leave out: tr MJMJ, and the basic rows with their columns.
void MAWeightedFit::AddTraces(MAProjectionSums& sums) const
{
    for (std::size_t i = 0; i < Rank(); ++i) {
        for (std::size_t j = 0; j < Rank(); ++j)
            sums.tracePP += hat_(i, j) * hat_(j, i);
    }
    for (std::size_t b = 0; b < basic_.rows.size(); ++b) {
        sums.traceP += BasicComplement(b, b) * basic_.weights[b];
        sums.tracePP += SquaredProjection(basic_.rows[b]) + Square(basic_.weights[b]) * HatSquare(b);
    }
}

} // namespace MA_NAMESPACE
