#pragma once

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// The quantiles of one error probability alpha, which depend on nothing else but degrees of freedom.
///
/// They cost more than the rest of a small analysis. Many analyses share an object with memory, which
/// computes those of df = 0, 1, ... up to its length once; without memory, and beyond it, each is computed
/// when it is asked for. The values are the same. Not for several threads at once.
class MAQuantiles
{
public:
    /// Of one number of degrees of freedom; missing until it is asked for.
    struct Remembered
    {
        double t = KXMV::Missing();
        double chiLower = KXMV::Missing();
        double chiUpper = KXMV::Missing();
    };

    /// For analyses of up to so many studies. The quantiles of more than 1024 degrees of freedom cost less
    /// than the analyses.
    static std::vector<Remembered> MemoryFor(std::size_t mostStudies)
    {
        return std::vector<Remembered>(std::min<std::size_t>(mostStudies + 1, 1024));
    }

    /// The memory is the caller's, and holds quantiles of this alpha alone.
    explicit MAQuantiles(double alpha, std::span<Remembered> memory = {}) : alpha_(alpha), memory_(memory) {}

    /// Two-sided: of 1 - alpha / 2.
    double Normal()
    {
        if (KXMV::IsMissing(normal_))
            normal_ = TwoSidedNormalQuantile(alpha_);
        return normal_;
    }
    double T(double df)
    {
        return Recall(df, &Remembered::t, [&] { return TwoSidedTQuantile(alpha_, df); });
    }
    /// With probability alpha / 2 below it, and above it.
    double ChiLower(double df)
    {
        return Recall(df, &Remembered::chiLower, [&] { return KXDistFun::IdfChi(0.5 * alpha_, df); });
    }
    double ChiUpper(double df)
    {
        return Recall(df, &Remembered::chiUpper, [&] { return KXDistFun::IdfChiUpper(0.5 * alpha_, df); });
    }
    double Alpha() const { return alpha_; }

private:
    template <class Compute>
    double Recall(double df, double Remembered::*kind, Compute compute)
    {
        if (!(df >= 0.0 && df < static_cast<double>(memory_.size()) && df == std::floor(df)))
            return compute();
        double& value = memory_[static_cast<std::size_t>(df)].*kind;
        if (KXMV::IsMissing(value))
            value = compute();
        return value;
    }

    double alpha_;
    std::span<Remembered> memory_;
    double normal_ = KXMV::Missing();
};

} // namespace MA_NAMESPACE
