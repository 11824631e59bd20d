#include "meta_analysis/platform/common/KXPower.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>
#include <limits>

namespace {

KXStatus StoreRepresentable(double result, double& out)
{
    if (!std::isfinite(result) || KXMV::IsMissing(result))
        return KXStatus(KXPower::OVERFLOW_CODE);
    out = result;
    return KXStatus();
}

template <class Operation>
KXStatus Combine(double left, double right, double& out, Operation operation)
{
    if (std::isfinite(left) && std::isfinite(right) && !KXMV::IsMissing(left) && !KXMV::IsMissing(right))
        return StoreRepresentable(operation(left, right), out);
    if (KXMV::IsMissing(left) || KXMV::IsMissing(right))
        out = KXMV::Missing();
    else if (std::isnan(left) || std::isnan(right)) // asked first: std::pow(NaN, 0) is 1
        out = std::numeric_limits<double>::quiet_NaN();
    else
        out = operation(left, right);
    return KXStatus();
}

} // namespace

KXStatus KXPower::Exponent(double x, double& out) noexcept
{
    if (KXMV::IsMissing(x) || std::isnan(x)) {
        out = x;
        return KXStatus();
    }
    return StoreRepresentable(std::exp(x), out);
}

KXStatus KXPower::Power(double base, double exponent, double& out) noexcept
{
    return Combine(base, exponent, out, [](double b, double e) { return std::pow(b, e); });
}

KXStatus KXPower::Multiply(double left, double right, double& out) noexcept
{
    return Combine(left, right, out, [](double l, double r) { return l * r; });
}
