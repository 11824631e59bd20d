#pragma once

#include <array>
#include <cstddef>
#include <vector>

/// Yardsticks: plain loops over plain arrays that do the arithmetic of an analysis, and nothing else. They
/// read no records, check nothing and know one estimator, restricted maximum likelihood, with the library's
/// defaults.
namespace bare {

struct Fit
{
    double tau2;
    double mean;
    double q; ///< of the homogeneity test
};

/// Of n studies with effects y and variances v.
Fit FitReml(const double* y, const double* v, std::size_t n);

/// Sets of n studies, one behind the other: the sum of each figure over all sets, by the fixed-effect model
/// (without Q), that of DerSimonian and Laird, and REML.
Fit PoolSetsFixed(const std::vector<double>& y, const std::vector<double>& v, std::size_t n);
Fit PoolSetsMoment(const std::vector<double>& y, const std::vector<double>& v, std::size_t n);
Fit PoolSetsReml(const std::vector<double>& y, const std::vector<double>& v, std::size_t n);

/// What a run keeps for each study: test and interval, all of it on the ratio scale too, weight in the model,
/// and place in the plots.
struct StudyRow
{
    double stdError;
    double z;
    double significance;
    double lower;
    double upper;
    std::array<double, 5> ratio; ///< effect, variance, standard error, bounds, exponentiated
    double weight;
    double galbraithX;
    double galbraithY;
};
std::vector<StudyRow> DescribeStudies(const double* y, const double* v, std::size_t n, double tau2);

/// Events and non-events of the treatment group, then of the control group.
using Table = std::array<double, 4>;

struct Analysis
{
    Fit fit;
    std::vector<StudyRow> rows;
};
Analysis AnalyseEffects(const double* y, const double* v, std::size_t n);

/// The run on their log odds ratios.
Analysis AnalyseTables(const std::vector<Table>& tables);

/// Estimate, variance, standard error, z, significance and bounds of the fixed-effect model.
using ModelRow = std::array<double, 7>;

/// The model after each further study, in ascending order of `order`.
std::vector<ModelRow> PoolPrefixes(const std::vector<double>& y, const std::vector<double>& v,
                                   const std::vector<double>& order);

constexpr std::size_t predictorCount = 3;

/// Predictors, then the effect.
using DesignRow = std::array<double, predictorCount + 1>;

struct RegressionFit
{
    std::array<double, predictorCount> coefficients;
    std::array<double, predictorCount> stdErrors;
    double tau2;
    double residualQ;
    double i2;
    double h2;
    double rSquare;
};

/// Mixed-effects regression of n = rows.size() studies with variances v.
RegressionFit FitRemlRegression(const std::vector<DesignRow>& rows, const std::vector<double>& v);

} // namespace bare
