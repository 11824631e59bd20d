#pragma once

#include "meta_analysis/platform/common/Tails.h"

namespace distribution {

/// Student's t distribution with `df` > 0 degrees of freedom, on its upper half; the lower half follows
/// by symmetry. `df` is finite and need not be whole.
class StudentT
{
public:
    explicit StudentT(double df) noexcept;

    /// P(T > t) for t >= 0.
    ScaledProbability Upper(double t) const noexcept;

    /// t >= 0 with P(T > t) = q, for 0 < q <= 1/2; infinite where it exceeds what a double holds. Stops once
    /// the estimated error is below `accuracy` in relative or below `eps` in absolute terms.
    double UpperQuantile(double q, double eps, double accuracy) const noexcept;

private:
    /// The distribution at one t > 0. The smaller of the two probabilities is accurate in relative terms;
    /// the other one is its complement to 1/2.
    struct Point
    {
        double centralShare;             ///< t^2 / (df + t^2)
        ScaledProbability scaledDensity; ///< t times the density, minus the derivative of `upper` by log t
        double central;                  ///< P(0 < T < t)
        ScaledProbability upper;         ///< P(T > t)
    };

    bool IsCentral(double t) const noexcept;
    Point Evaluate(double t) const noexcept;
    double CentralSeries(double centralShare) const noexcept;

    double QuantileStart(double q) const noexcept;
    double CentralStart(double q) const noexcept;
    double NormalStart(double q) const noexcept;

    double df_;
    double half_;        ///< df / 2
    double logConstant_; ///< log of the density at 0
};

} // namespace distribution
