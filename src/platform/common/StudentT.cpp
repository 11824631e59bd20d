#include "meta_analysis/platform/common/StudentT.h"
#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/IncompleteBeta.h"
#include <cmath>
#include <algorithm>
#include <cstdlib>
namespace distribution {
StudentT::StudentT(double df) noexcept : df_(df)
{
    const double a = 0.5 * df;
    logConstant_ = StirlingRemainder(a + 0.5) - StirlingRemainder(a) - Deviance(a, a + 0.5, 0.5) - 0.91893853320467274178;
}
StudentT::Evaluation StudentT::Evaluate(double t) const noexcept
{
    const double square = t * t;
    const double ratio = square / df_;
    const double a = 0.5 * df_;
    const double x = 1.0 / (1.0 + ratio);
    const double y = 1.0 / (1.0 + 1.0 / ratio);
    const double excess = a * y - 0.5 * x;
    const double lg = std::isinf(ratio)? 2*log(t)-log(df_) : std::log1p(ratio);
    const double sd = t * std::exp(logConstant_ - (a + 0.5) * lg);
    if (square <= std::min(6.0, df_)) {
        double sum = 1.0, term = 1.0;
        for (double n = 0.0; n < 200; ++n) {
            term *= (a + 0.5 + n) / (1.5 + n) * y;
            sum += term;
            if (term <= 5e-17 * sum) break;
        }
        const double central = sd * sum;
        return {sd, central, 0.5 - central};
    }
    const double upper = 0.5 * sd * BetaFraction({a, 0.5, x, y, excess});
    return {sd, 0.5 - upper, upper};
}
double StudentT::Upper(double t) const noexcept { return Evaluate(t).upper; }
} // namespace distribution
