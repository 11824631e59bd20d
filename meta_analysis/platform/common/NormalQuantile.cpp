#include "meta_analysis/platform/common/NormalQuantile.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace distribution {

namespace {

// Wichura (1988, Applied Statistics 37, 477-484): minimax rational functions, accurate to 1e-16 for every
// double p. Coefficients by rising powers.
using Coefficients = std::array<double, 8>;

double Polynomial(const Coefficients& c, double x) noexcept
{
    double value = c.back();
    for (std::size_t i = c.size() - 1; i-- > 0;)
        value = value * x + c[i];
    return value;
}

struct Rational
{
    Coefficients numerator;
    Coefficients denominator;

    double operator()(double x) const noexcept
    {
        return Polynomial(numerator, x) / Polynomial(denominator, x);
    }
};

constexpr Rational centre = {
    {3.3871328727963666080, 1.3314166789178437745e+2, 1.9715909503065514427e+3, 1.3731693765509461125e+4,
     4.5921953931549871457e+4, 6.7265770927008700853e+4, 3.3430575583588128105e+4, 2.5090809287301226727e+3},
    {1.0, 4.2313330701600911252e+1, 6.8718700749205790830e+2, 5.3941960214247511077e+3,
     2.1213794301586595867e+4, 3.9307895800092710610e+4, 2.8729085735721942674e+4, 5.2264952788528545610e+3}};
constexpr Rational nearTail = {
    {1.42343711074968357734, 4.63033784615654529590, 5.76949722146069140550, 3.64784832476320460504,
     1.27045825245236838258, 2.41780725177450611770e-1, 2.27238449892691845833e-2, 7.74545014278341407640e-4},
    {1.0, 2.05319162663775882187, 1.67638483018380384940, 6.89767334985100004550e-1,
     1.48103976427480074590e-1, 1.51986665636164571966e-2, 5.47593808499534494600e-4,
     1.05075007164441684324e-9}};
constexpr Rational farTail = {
    {6.65790464350110377720, 5.46378491116411436990, 1.78482653991729133580, 2.96560571828504891230e-1,
     2.65321895265761230930e-2, 1.24266094738807843860e-3, 2.71155556874348757815e-5,
     2.01033439929228813265e-7},
    {1.0, 5.99832206555887937690e-1, 1.36929880922735805310e-1, 1.48753612908506148525e-2,
     7.86869131145613259100e-4, 1.84631831751005468180e-5, 1.42151175831644588870e-7,
     2.04426310338993978564e-15}};

} // namespace

// In the centre the quantile is odd in p - 1/2; in a tail it is nearly linear in sqrt(-log(tail)). Each
// function's argument is shifted to the middle of its range.
double NormalQuantile(double p) noexcept
{
    const double fromCentre = p - 0.5;
    if (std::fabs(fromCentre) <= 0.425)
        return fromCentre * centre(0.425 * 0.425 - fromCentre * fromCentre);
    const double tail = fromCentre < 0.0 ? p : 1.0 - p;
    const double r = std::sqrt(-std::log(tail));
    const double z = r <= 5.0 ? nearTail(r - 1.6) : farTail(r - 5.0);
    return std::copysign(z, fromCentre);
}

} // namespace distribution
