#include "meta_analysis/regression/design/MABasicRows.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// The row with the largest w |z|²; the one with the largest z when all weights are 0.
std::size_t HeaviestRow(const Values& left, std::size_t p, const Values& weights,
                        const std::vector<std::size_t>& taken)
{
    std::size_t heaviest = 0;
    double most = -1.0;
    double largest = -1.0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        if (std::find(taken.begin(), taken.end(), i) != taken.end())
            continue;
        const double size = Dot(left.data() + i * p, left.data() + i * p, p);
        const double weight = weights[i] * size;
        if (weight > most || (weight == most && size > largest)) {
            most = weight;
            largest = size;
            heaviest = i;
        }
    }
    return heaviest;
}

/// Takes, p times, the row whose weighted part orthogonal to the rows taken before is largest: a pivoted QR
/// factorization of √W Z with its rows as columns. E holds the directions that the rows add.
void TakeHeaviestRows(const MAOrthonormalColumns& columns, const Values& weights, MABasicRows& basic)
{
    const std::size_t p = columns.Rank();
    const std::size_t rowCount = weights.size();
    Values left(rowCount * p);
    for (std::size_t i = 0; i < rowCount; ++i)
        std::copy_n(columns.Row(i), p, left.data() + i * p);
    basic.directions = MASquareMatrix(p);
    for (std::size_t s = 0; s < p; ++s) {
        basic.rows.push_back(HeaviestRow(left, p, weights, basic.rows));
        double* const direction = p == 0 ? nullptr : &basic.directions(s, 0);
        std::copy_n(left.data() + basic.rows[s] * p, p, direction);
        for (std::size_t earlier = 0; earlier < s; ++earlier) {
            const double share = Dot(direction, &basic.directions(earlier, 0), p);
            for (std::size_t j = 0; j < p; ++j)
                direction[j] -= share * basic.directions(earlier, j);
        }
        const double norm = std::sqrt(Dot(direction, direction, p));
        std::for_each(direction, direction + p, [norm](double& value) { value /= norm; });
        for (std::size_t i = 0; i < rowCount; ++i) {
            const double share = Dot(left.data() + i * p, direction, p);
            for (std::size_t j = 0; j < p; ++j)
                left[i * p + j] -= share * direction[j];
        }
    }
}

/// u' = z'Z_B⁻¹ = (Ez)'L⁻¹, by substitution; the basic rows themselves are exact unit vectors.
void StoreCoordinates(const MAOrthonormalColumns& columns, std::size_t rowCount, MABasicRows& basic)
{
    const std::size_t p = columns.Rank();
    const auto along = [&](std::size_t row, double* shares) {
        for (std::size_t s = 0; s < p; ++s)
            shares[s] = Dot(columns.Row(row), &basic.directions(s, 0), p);
    };
    basic.basis = MASquareMatrix(p);
    Values shares(p);
    for (std::size_t b = 0; b < p; ++b) {
        along(basic.rows[b], shares.data());
        for (std::size_t s = 0; s <= b; ++s)
            basic.basis(s, b) = shares[s];
    }
    basic.cells.resize(rowCount * (p + 1));
    for (std::size_t i = 0; i < rowCount; ++i) {
        double* const row = basic.cells.data() + i * (p + 1);
        along(i, row);
        SolveUpper(basic.basis, row);
        row[p] = columns.Row(i)[p];
        for (std::size_t b = 0; b < p; ++b)
            row[p] -= row[b] * columns.Row(basic.rows[b])[p];
    }
    for (std::size_t b = 0; b < p; ++b) {
        double* const row = basic.cells.data() + basic.rows[b] * (p + 1);
        std::fill_n(row, p + 1, 0.0);
        row[b] = 1.0;
    }
}

} // namespace

MABasicRows ChooseBasicRows(const MAOrthonormalColumns& columns, const Values& weights)
{
    MABasicRows basic;
    TakeHeaviestRows(columns, weights, basic);
    basic.otherWeights = weights;
    for (const std::size_t row : basic.rows) {
        basic.weights.push_back(weights[row]);
        basic.otherWeights[row] = 0.0;
    }
    StoreCoordinates(columns, weights.size(), basic);
    return basic;
}

} // namespace MA_NAMESPACE
