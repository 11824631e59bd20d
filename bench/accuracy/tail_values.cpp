// Reads lines "distribution x df1 df2" and prints for each the upper tail of this library, its decimal
// logarithm, and the upper tail of the GNU Scientific Library.

#include "meta_analysis/platform/common/KXDistFun.h"

#include <gsl/gsl_cdf.h>
#include <gsl/gsl_errno.h>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

struct Point
{
    std::string distribution;
    double x, df1, df2;
};

struct Values
{
    double tail, log10Tail, tailOfGsl;
};

Values ValuesAt(const Point& point)
{
    const auto& [distribution, x, df1, df2] = point;
    if (distribution == "StdNorm")
        return {KXDistFun::TailStdNorm(x), KXDistFun::Log10TailStdNorm(x), gsl_cdf_ugaussian_Q(x)};
    if (distribution == "Chi")
        return {KXDistFun::TailChi(x, df1), KXDistFun::Log10TailChi(x, df1), gsl_cdf_chisq_Q(x, df1)};
    if (distribution == "T")
        return {KXDistFun::TailT(x, df1), KXDistFun::Log10TailT(x, df1), gsl_cdf_tdist_Q(x, df1)};
    return {KXDistFun::TailF(x, df1, df2), KXDistFun::Log10TailF(x, df1, df2), gsl_cdf_fdist_Q(x, df1, df2)};
}

} // namespace

int main()
{
    gsl_set_error_handler_off();
    Point point;
    while (std::cin >> point.distribution >> point.x >> point.df1 >> point.df2) {
        const Values values = ValuesAt(point);
        std::printf("%.17g %.17g %.17g\n", values.tail, values.log10Tail, values.tailOfGsl);
    }
}
