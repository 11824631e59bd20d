#include "host/plots/PValueCurve.h"

#include "host/text/NumberText.h"

#include "meta_analysis/platform/common/KXDistFun.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

/// Beyond, every curve of the normal distribution lies on the axis.
constexpr double NEAR = 4;
/// Of the steps further away, where the tails of Student's t are flat.
constexpr double GROWTH = 1.3;

double CriticalValue(double alpha, double df)
{
    return std::isinf(df) ? KXDistFun::IdfStdNorm(1 - alpha / 2) : KXDistFun::IdfT(1 - alpha / 2, df);
}

/// Distances from the estimate in standard errors, ascending from 0 to `farthest` and not beyond.
std::vector<double> Distances(double farthest, double critical, double step)
{
    std::vector<double> distances = {0, std::max(farthest, 0.0)};
    if (critical < farthest)
        distances.push_back(critical);
    const double near = std::min(NEAR, farthest);
    for (int i = 1; i * step < near; ++i)
        distances.push_back(i * step);
    for (double distance = NEAR; distance < std::min(farthest, 1e6); distance *= GROWTH)
        distances.push_back(distance);
    std::sort(distances.begin(), distances.end());
    return distances;
}

} // namespace

bool TestedEstimate::HasTest() const
{
    return IsNumber(estimate) && IsNumber(stdError) && stdError > 0 && df > 0;
}

double PValueOf(const TestedEstimate& tested, double effect)
{
    const double distance = std::abs(tested.estimate - effect) / tested.stdError;
    const double tail =
        std::isinf(tested.df) ? KXDistFun::TailStdNorm(distance) : KXDistFun::TailT(distance, tested.df);
    return std::min(1.0, 2 * tail);
}

std::vector<Point> PValueCurve(const TestedEstimate& tested, const Extent& effects, double alpha, double step)
{
    const double critical = CriticalValue(alpha, tested.df);
    std::vector<Point> curve;
    const auto add = [&](double distance, double direction) {
        const double effect = tested.estimate + direction * distance * tested.stdError;
        curve.push_back({effect, PValueOf(tested, effect)});
    };
    std::vector<double> left =
        Distances((tested.estimate - effects.First()) / tested.stdError, critical, step);
    std::reverse(left.begin(), left.end());
    for (const double distance : left)
        add(distance, -1);
    for (const double distance :
         Distances((effects.Last() - tested.estimate) / tested.stdError, critical, step))
        add(distance, 1);
    return curve;
}

} // namespace host
