#pragma once

namespace distribution {

struct BetaPoint
{
    double a;
    double b;
    double x;
    double y;
    double excess;
};

double BetaFraction(const BetaPoint& p) noexcept;
double LowerBeta(const BetaPoint& p) noexcept;

} // namespace distribution
