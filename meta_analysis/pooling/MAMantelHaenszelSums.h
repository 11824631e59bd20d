#pragma once

#include <cmath>

namespace MA_NAMESPACE {

// What the Mantel-Haenszel methods for risks and for rates share: the estimate and its variance, after
// Greenland and Robins (1985), Biometrics 41, 55-68, from running sums that each method fills, and that
// can be added.

/// The logarithm of a ratio R / S of sums, with the variance P / (S R).
class MARatioSums
{
public:
    void Add(const MARatioSums& others)
    {
        r_ += others.r_;
        s_ += others.s_;
        p_ += others.p_;
    }
    double Estimate() const { return std::log(r_ / s_); }
    double Variance() const { return p_ / (s_ * r_); }

protected:
    double r_ = 0.0;
    double s_ = 0.0;
    double p_ = 0.0;
};

/// A weighted mean of differences.
class MADifferenceSums
{
public:
    void Add(const MADifferenceSums& others)
    {
        weightedDifferences_ += others.weightedDifferences_;
        weights_ += others.weights_;
        weightedVariances_ += others.weightedVariances_;
    }
    double Estimate() const { return weightedDifferences_ / weights_; }
    double Variance() const { return weightedVariances_ / (weights_ * weights_); }

protected:
    double weightedDifferences_ = 0.0;
    double weights_ = 0.0;
    double weightedVariances_ = 0.0; ///< variances times the squares of the weights
};

} // namespace MA_NAMESPACE
