#include "meta_analysis/regression/design/MASymmetricEigen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace MA_NAMESPACE {

namespace {

/// Cosine and sine of a rotation.
struct Rotation
{
    double cosine;
    double sine;
};

/// The rotation of the axes p and q that makes a_pq zero, by the smaller of its two angles.
Rotation RotationThatClears(const MASquareMatrix& a, std::size_t p, std::size_t q)
{
    const double cotangent = (a(q, q) - a(p, p)) / (2.0 * a(p, q)); // of twice the angle
    const double tangent = std::copysign(1.0, cotangent) / (std::abs(cotangent) + std::hypot(1.0, cotangent));
    const double cosine = 1.0 / std::hypot(1.0, tangent);
    return {cosine, tangent * cosine};
}

/// Replaces x and y by cx - sy and sx + cy.
void Rotate(const Rotation& by, double& x, double& y)
{
    const double former = x;
    x = by.cosine * former - by.sine * y;
    y = by.sine * former + by.cosine * y;
}

void RotateAxes(MASquareMatrix& a, MASquareMatrix& vectors, std::size_t p, std::size_t q)
{
    const Rotation rotation = RotationThatClears(a, p, q);
    for (std::size_t i = 0; i < a.Size(); ++i) {
        Rotate(rotation, a(i, p), a(i, q));
        Rotate(rotation, vectors(i, p), vectors(i, q));
    }
    for (std::size_t i = 0; i < a.Size(); ++i)
        Rotate(rotation, a(p, i), a(q, i));
    a(p, q) = a(q, p) = 0.0;
}

/// Rotates each pair of axes whose element is not negligible; false when there was none.
bool Sweep(MASquareMatrix& a, MASquareMatrix& vectors, double negligible)
{
    bool hasRotated = false;
    for (std::size_t p = 0; p < a.Size(); ++p) {
        for (std::size_t q = p + 1; q < a.Size(); ++q) {
            if (!(std::abs(a(p, q)) > negligible))
                continue;
            RotateAxes(a, vectors, p, q);
            hasRotated = true;
        }
    }
    return hasRotated;
}

double LargestElement(const MASquareMatrix& a)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < a.Size(); ++i)
        for (std::size_t j = 0; j <= i; ++j)
            largest = std::max(largest, std::abs(a(i, j)));
    return largest;
}

MASymmetricEigen Ascending(const MASquareMatrix& diagonal, const MASquareMatrix& vectors)
{
    const std::size_t n = diagonal.Size();
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return diagonal(left, left) < diagonal(right, right);
    });
    MASymmetricEigen eigen = {{}, MASquareMatrix(n)};
    for (std::size_t j = 0; j < n; ++j) {
        eigen.values.push_back(diagonal(order[j], order[j]));
        for (std::size_t i = 0; i < n; ++i)
            eigen.vectors(i, j) = vectors(i, order[j]);
    }
    return eigen;
}

} // namespace

/// Convergence is quadratic: six to ten sweeps do. The limit is for elements that are not numbers.
MASymmetricEigen EigenOf(MASquareMatrix a)
{
    constexpr int maxSweeps = 50;
    MASquareMatrix vectors = UnitMatrix(a.Size());
    const double negligible = 0.25 * std::numeric_limits<double>::epsilon() * LargestElement(a);
    for (int sweep = 0; sweep < maxSweeps && Sweep(a, vectors, negligible); ++sweep) {
    }
    return Ascending(a, vectors);
}

} // namespace MA_NAMESPACE
