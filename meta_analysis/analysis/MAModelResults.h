#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <functional>
#include <vector>

namespace MA_NAMESPACE {

/// A pooled model's estimate with its test and interval, on the analysis scale.
struct MAModelRow
{
    double estimate = KXMV::Missing();
    double variance = KXMV::Missing();
    double stdError = KXMV::Missing();
    double statistic = KXMV::Missing();
    MAPValue pValue;
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
    int correctedTables = 0; ///< 2x2 tables that were pooled with a zero-cell correction
};

/// A pooled model's estimate and interval on the ratio scale.
struct MAExponentiatedRow
{
    double estimate = KXMV::Missing();
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
};

/// A pooled model's heterogeneity output; missing where the model has no such quantity.
struct MAHeterogeneityRow
{
    double q = KXMV::Missing();
    double df = KXMV::Missing();
    MAPValue pValue;
    double h2 = KXMV::Missing();
    double h2Lower = KXMV::Missing();
    double h2Upper = KXMV::Missing();
    double i2 = KXMV::Missing();
    double i2Lower = KXMV::Missing();
    double i2Upper = KXMV::Missing();
    double piLower = KXMV::Missing();
    double piUpper = KXMV::Missing();
    double piProbability = KXMV::Missing();
    double tau2Lower = KXMV::Missing();
    double tau2Upper = KXMV::Missing();
    double tau2Convergence = KXMV::Missing();
    double tau2Evaluations = KXMV::Missing();
    double logLikelihood = KXMV::Missing();
    double aic = KXMV::Missing();
    double bic = KXMV::Missing();
    double aicc = KXMV::Missing();
};

/// Test of heterogeneity between subgroups.
struct MABetweenGroups
{
    double q = 0.0;
    int df = 0;
    MAPValue pValue = {0.0, KXMV::Missing()};
};

/// A contrast's estimate with its test and interval.
struct MAContrastRow
{
    double estimate;
    double stdError;
    double zValue;
    MAPValue pValue;
    double ciLower;
    double ciUpper;
};

/// The test covariate's coefficient of a regression-based small-study test.
struct MARegTestRow
{
    double coefficient = KXMV::Missing();
    double stdError = KXMV::Missing();
    double statistic = KXMV::Missing();
    MAPValue pValue;
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
    int df = 0; ///< good records minus non-redundant parameters
};

/// The studies that trim-and-fill adds, in the order of filling.
struct MAImputedStudies
{
    std::vector<double> effectSize;
    std::vector<double> variance;
    std::vector<double> stdError;
};

/// Coordinates of funnel plots, one row per plot.
struct MAFunnelRows
{
    std::vector<std::vector<double>> x;
    std::vector<std::vector<double>> y;
    std::vector<std::vector<double>> lineX;
    std::vector<std::vector<double>> lineY;
    std::vector<std::vector<double>> contourX;
    std::vector<double> yMax;
};

/// Coordinates of Galbraith plots, one row per plot.
struct MAGalbraithRows
{
    std::vector<std::vector<double>> x;
    std::vector<std::vector<double>> y;
    std::vector<double> slope;
    std::vector<double> criticalValue;
};

/// Coordinates and weights of L'Abbé plots, one row per plot.
struct MALabbeRows
{
    std::vector<std::vector<double>> x;
    std::vector<std::vector<double>> y;
    std::vector<std::vector<double>> weight;
};

/// What is kept of the models fitted so far and is reset and set aside together, an entry a model.
struct MAModelResults
{
    std::vector<MAModelRow> models;
    std::vector<MAExponentiatedRow> exponentiated; ///< only for ratio measures
    std::vector<double> tau2;                      ///< only of models whose heterogeneity is recorded

    void Reset(bool alsoTau2)
    {
        models.clear();
        exponentiated.clear();
        if (alsoTau2)
            tau2.clear();
    }
};

/// The p-values of the rows (`form` is `&MAPValue::value`) or their decimal logarithms (`&MAPValue::Log10`).
template <class Row, class Form>
std::vector<double> PValuesOf(const std::vector<Row>& rows, Form form) noexcept
{
    return FieldOf(rows, [=](const Row& row) { return std::invoke(form, row.pValue); });
}

} // namespace MA_NAMESPACE
