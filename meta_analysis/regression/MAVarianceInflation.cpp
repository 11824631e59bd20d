#include "meta_analysis/regression/MAVarianceInflation.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>
#include <utility>

namespace MA_NAMESPACE {

namespace {

using Columns = std::vector<std::vector<double>>;

/// U column by column for the estimated coefficients beside the intercept. The root of a coefficient has no
/// part in the columns before it.
Columns RootsOf(const MARegFit& fit)
{
    const std::size_t first = fit.EstimatedColumns().size() - static_cast<std::size_t>(fit.TestedCount());
    Columns roots;
    for (std::size_t i = first; i < fit.EstimatedColumns().size(); ++i) {
        std::vector<double> weights(fit.Coefficients().size());
        weights[fit.EstimatedColumns()[i]] = 1.0;
        std::vector<double> root = fit.Combine(weights).root;
        root.erase(root.begin(), root.begin() + static_cast<std::ptrdiff_t>(first));
        roots.push_back(std::move(root));
    }
    return roots;
}

/// The columns of U'⁻¹.
Columns InverseRootsOf(const Columns& roots)
{
    MASquareMatrix transposed(roots.size());
    for (std::size_t j = 0; j < roots.size(); ++j) {
        for (std::size_t i = j; i < roots.size(); ++i)
            transposed(j, i) = roots[j][i];
    }
    Columns inverse;
    for (std::size_t j = 0; j < roots.size(); ++j) {
        inverse.emplace_back(roots.size());
        inverse.back()[j] = 1.0;
        SolveUpper(transposed, inverse.back().data());
    }
    return inverse;
}

/// Half the logarithm of the determinant of the products of columns.
double HalfLogDeterminant(const Columns& columns, std::size_t first, std::size_t count)
{
    MASquareMatrix matrix(columns.size());
    for (std::size_t j = 0; j < count; ++j) {
        for (std::size_t i = 0; i < columns.size(); ++i)
            matrix(i, j) = columns[first + j][i];
    }
    matrix = TriangularFactor(std::move(matrix));
    double sum = 0.0;
    for (std::size_t j = 0; j < count; ++j)
        sum += std::log(std::abs(matrix(j, j)));
    return sum;
}

} // namespace

std::vector<double> VarianceInflation(const MARegFit& fit)
{
    std::vector<double> inflation(fit.Coefficients().size(), KXMV::Missing());
    const Columns roots = RootsOf(fit);
    const Columns inverseRoots = InverseRootsOf(roots);
    std::size_t first = 0;
    for (const MADesignMatrixEffect& effect : fit.Design().GetEffects()) {
        std::vector<std::size_t> kept;
        for (int column = effect.GetStart(); column < effect.GetStart() + effect.GetSize(); ++column)
            if (fit.NonRedundant().Test(static_cast<std::size_t>(column)))
                kept.push_back(static_cast<std::size_t>(column));
        const double logarithm = HalfLogDeterminant(roots, first, kept.size()) +
                                 HalfLogDeterminant(inverseRoots, first, kept.size());
        for (const std::size_t column : kept)
            inflation[column] = std::exp(2.0 * logarithm);
        first += kept.size();
    }
    return inflation;
}

} // namespace MA_NAMESPACE
