#pragma once

#include "meta_analysis/settings/MAConst.h"

#include <cstdint>
#include <random>
#include <vector>

// Random analyses on which the search for the between-study variance is tried, and the extended precision
// against which its result is judged.

/// The effects and variances of one analysis, and the estimator. `covariates` are columns beside the
/// intercept of a meta-regression; there are none for plain pooling.
struct Tau2Analysis
{
    std::vector<double> effects;
    std::vector<double> variances;
    std::vector<std::vector<double>> covariates = {};
    MAConst::TAU2ESTIMATOR estimator = MAConst::TAU2_REML;
};

/// How the within-study variances are drawn.
enum class VarianceFamily
{
    Uniform,       ///< on 0.01 to 0.2
    Lognormal,     ///< standard deviation of the logarithm 1.5
    WideLognormal, ///< the same, 3
    Equal,
    PowersOfTen ///< 1e-8 to 1, the larger the more frequent
};

inline constexpr VarianceFamily varianceFamilies[] = {VarianceFamily::Uniform, VarianceFamily::Lognormal,
                                                      VarianceFamily::WideLognormal, VarianceFamily::Equal,
                                                      VarianceFamily::PowersOfTen};

/// Random analyses, a tenth of them regressions: 2 to 100 studies, in the order drawn or sorted by variance;
/// a tenth of the effects are five times as far from the mean as the model has them; variances times 1e-8 to
/// 1e8.
class Tau2Simulation
{
public:
    explicit Tau2Simulation(std::uint64_t seed) : generator_(seed) {}
    Tau2Analysis Next(VarianceFamily family);

private:
    double Uniform(double low, double high);
    double Normal();
    double Variance(VarianceFamily family);
    std::vector<double> Variances(VarianceFamily family);
    void AddCovariates(Tau2Analysis& analysis);

    std::mt19937_64 generator_;
};

/// What the scan finds about the search of one analysis.
struct Tau2Verdict
{
    double tau2;
    int evaluations;
    /// ML, REML: the likelihood is below that of a point of the scan, beyond rounding. EB: there is no root.
    bool isMiss;
    /// Distance to the stationary point or root, relative to tau² + typical variance; at most 1e-6.
    double error;
    /// Change by a change of the effects' unit, relative to tau² + typical variance.
    double unitError;
};

/// Searches, scans the log-likelihood from 0 to beyond the last stationary point on a fine grid, and looks
/// for the stationary point around the result. `factor` changes the effects' unit.
Tau2Verdict JudgeSearch(const Tau2Analysis& analysis, double factor);
