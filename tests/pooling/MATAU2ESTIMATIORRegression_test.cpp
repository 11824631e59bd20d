#include "support/LeastSquares.h"
#include "support/Regression.h"

#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"
#include "meta_analysis/regression/MADesignMatrix.h"

#include <functional>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// What the estimators are made of, for a fit with weights W: y'Py, y'PPy, tr P, tr PP, tr PV, sum(W),
/// sum(W²) and the weighted sum of the squared residuals with the inverse variances as weights.
struct QuadraticForms
{
    QuadraticForms(const Rows& rows, const LeastSquares& fit)
    {
        const LeastSquares::Matrix p = fit.P();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            long double residual = 0;
            for (std::size_t j = 0; j < rows.size(); ++j) {
                residual += p[i][j] * fit.Effects()[j];
                tracePP += p[i][j] * p[i][j];
            }
            yPy += residual * fit.Effects()[i];
            yPPy += residual * residual;
            trace += p[i][i];
            tracePV += p[i][i] * rows[i][1];
            weights += fit.Weights()[i];
            squaredWeights += fit.Weights()[i] * fit.Weights()[i];
            precision += 1 / static_cast<long double>(rows[i][1]);
            q += residual * residual / (fit.Weights()[i] * fit.Weights()[i]) / rows[i][1];
        }
    }

    long double yPy = 0, yPPy = 0, trace = 0, tracePP = 0, tracePV = 0, weights = 0, squaredWeights = 0;
    long double precision = 0, q = 0;
};

using WeightOf = std::function<long double(long double variance)>;

QuadraticForms Forms(const Rows& rows, const WeightOf& weightOf)
{
    LeastSquares::Vector weights;
    for (const Row& row : rows)
        weights.push_back(weightOf(row[1]));
    return QuadraticForms(rows, LeastSquares(rows, weights));
}

long double CrudeVariance(const Rows& rows)
{
    const auto k = static_cast<long double>(rows.size());
    long double mean = 0, squares = 0;
    for (const Row& row : rows)
        mean += row[0] / k;
    for (const Row& row : rows)
        squares += (row[0] - mean) * (row[0] - mean) / k;
    return squares;
}

struct Step
{
    long double value;
    long double termSize; ///< of the terms of which it is the difference
};

/// The scoring step of an iterative estimator.
Step StepAt(const std::string& code, const Rows& rows, long double df, long double tau2)
{
    const auto k = static_cast<long double>(rows.size());
    const QuadraticForms f = Forms(rows, [&](long double v) { return 1 / (v + tau2); });
    if (code == "ML")
        return {(f.yPPy - f.weights) / f.squaredWeights, (f.yPPy + f.weights) / f.squaredWeights};
    if (code == "REML")
        return {(f.yPPy - f.trace) / f.tracePP, (f.yPPy + f.trace) / f.tracePP};
    return {(k / df * f.yPy - k) / f.weights, (k / df * f.yPy + k) / f.weights};
}

/// A step is halved until it can be taken.
long double Iterated(const std::string& code, const Rows& rows, long double df, long double tau2)
{
    long double step = StepAt(code, rows, df, tau2).value;
    while (tau2 + step < 0)
        step /= 2;
    return tau2 + step;
}

/// Every estimator as its definition with k x k matrices has it.
long double Expected(const std::string& code, const Rows& rows, int iterations)
{
    const auto k = static_cast<long double>(rows.size());
    const long double df = k - static_cast<long double>(rows[0].size() - 1);
    const QuadraticForms unweighted = Forms(rows, [](long double) { return 1; });
    if (code == "HS")
        return std::max(0.0L, (unweighted.q - k) / unweighted.precision);
    if (code == "DL") {
        const QuadraticForms fixed = Forms(rows, [](long double v) { return 1 / v; });
        return std::max(0.0L, (fixed.yPy - df) / fixed.trace);
    }
    if (code == "SJ") {
        const long double crude = CrudeVariance(rows);
        return Forms(rows, [&](long double v) { return crude / (v + crude); }).yPy / df;
    }
    long double tau2 = std::max(0.0L, (unweighted.yPy - unweighted.tracePV) / df);
    for (int i = 0; code != "HE" && i < iterations; ++i)
        tau2 = Iterated(code, rows, df, tau2);
    return tau2;
}

/// A design matrix with its rows cached.
struct Design
{
    Design(const std::vector<int>& covariates, const Rows& rows)
        : settings(RegressionOn(covariates)), records(rows), matrix(settings)
    {
        EXPECT_TRUE(records.Start());
        EXPECT_TRUE(matrix.ReadFirstPass(records).IsOK());
        matrix.AttachIterator(records);
        EXPECT_TRUE(matrix.CacheRows().IsOK());
    }

    MARegSettings settings;
    VectorRecordIter records;
    MADesignMatrix matrix;
};

} // namespace

/// Each iteration, not the end alone: a wrong denominator of the step would end at the same root. A redundant
/// column changes nothing.
TEST(MATAU2ESTIMATIORRegression, EqualsTheDefinitionsWithSquareMatrices)
{
    for (unsigned seed = 1; seed <= 25; ++seed) {
        const std::size_t moderators = seed % 3;
        const Rows rows = RandomStudies(seed, 8 + seed, moderators);
        Rows withRedundant = rows;
        for (Row& row : withRedundant)
            row.resize(4, moderators == 1 ? 1 - 2 * row[2] : 0.7);
        for (const char* const code : {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"}) {
            for (const int iterations : {0, 1, 2, 5}) {
                SCOPED_TRACE(testing::Message()
                             << code << ", seed " << seed << ", iterations " << iterations);
                MARegSettings settings = RegressionOn({2, 3});
                settings.SetEstTauType(code);
                settings.SetMaxIterations(iterations);
                settings.SetParameterTolerance(1e-300); // the last small step would not be taken
                settings.SetMaxStepHalvingValue(100);
                const RERegression regression(settings, withRedundant);
                const auto expected = static_cast<double>(Expected(code, rows, iterations));
                EXPECT_TRUE(Close(regression.output->GetTau(), expected, 1e-12, 0.1));
            }
        }
    }
}

/// The first step without moderators, from the Hedges estimate. Where a weight dominates, the residual of its
/// study is a difference that keeps no more digits than there are beyond the dominance; no other term may
/// lose any.
TEST(MATAU2ESTIMATIORRegression, PlainStepIsRightHoweverUnequalTheWeights)
{
    for (unsigned seed = 1; seed <= 50; ++seed) {
        for (const double dominance : {1.0, 1e3, 1e6, 1e10}) {
            Rows rows = RandomStudies(seed, 6, 0);
            rows[2][1] /= dominance;
            const Row effects = ColumnOf(rows, 0);
            const Row variances = ColumnOf(rows, 1);
            MATAU2ESTIMATIOR estimator;
            estimator.SetEffectSizes(&effects);
            estimator.SetVariances(&variances);
            estimator.SetConverTol(0);
            estimator.SetMaxIter(1);
            estimator.SetMaxStepHalving(100);
            estimator.ComputeTau2Variance(TAU2_HE);
            const double start = estimator.GetBetweenStudyVariannce();
            for (const auto& [type, code] :
                 {std::pair(TAU2_ML, "ML"), {TAU2_REML, "REML"}, {TAU2_EB, "EB"}}) {
                SCOPED_TRACE(testing::Message() << code << ", dominance " << dominance << ", seed " << seed);
                estimator.ComputeTau2Variance(type);
                const auto expected = static_cast<double>(Iterated(code, rows, 5, start));
                const auto scale = static_cast<double>(StepAt(code, rows, 5, start).termSize);
                EXPECT_TRUE(Close(estimator.GetBetweenStudyVariannce(), expected,
                                  8 * machineEpsilon * dominance, scale));
            }
        }
    }
}

TEST(MATAU2ESTIMATIORRegression, RefusesWhatDoesNotFit)
{
    const Design design({2, 3}, RandomStudies(1, 6, 2));
    const Design saturated({2, 3}, RandomStudies(1, 3, 2));
    const Design single({}, RandomStudies(1, 6, 0));
    const std::vector<double> two(2, 0.1), three(3, 0.1), six(6, 0.1), many(99, 0.1);
    struct Case
    {
        const char* name;
        const Design& design;
        const std::vector<double>* coefficients;
        const std::vector<double>* leverages;
        const std::vector<double>* weights;
        int parameterCount;
        int type;
        int code;
    };
    const Case cases[] = {
        {"coefficients", design, &two, &six, &six, 2, TAU2_HS, 460002},
        // A single column leaves the parameter count open; the coefficients must not run past the rows.
        {"coefficients of one column", single, &many, &six, &six, 1, TAU2_HS, 460002},
        {"parameters", design, &three, &six, &six, 4, TAU2_HS, 460010},
        {"leverages of HE", design, &three, &three, &six, 3, TAU2_HE, 460009},
        {"leverages of DL", design, &three, &three, &six, 3, TAU2_DL, 460009},
        {"leverages of REML", design, &three, &three, &six, 3, TAU2_REML, 460009},
        {"weights of SJ", design, &three, &six, &three, 3, TAU2_SJ, 460009},
        {"no weights of SJ", design, &three, &six, nullptr, 3, TAU2_SJ, 460009},
        {"rows of HE", saturated, &three, &three, &three, 3, TAU2_HE, 460015},
        {"rows of SJ", saturated, &three, &three, &three, 3, TAU2_SJ, 460015},
        {"rows of ML", saturated, &three, &three, &three, 3, TAU2_ML, 460015},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MATAU2ESTIMATIOR estimator;
        estimator.SetDesignMatrix(&c.design.matrix);
        estimator.SetRegCoef(c.coefficients);
        estimator.SetNonRedundantParamSize(c.parameterCount);
        estimator.SetDiagH(c.leverages);
        estimator.SetVariances(c.weights);
        EXPECT_EQ(estimator.ComputeTau2Variance(static_cast<TAU2ESTIMATOR>(c.type)).GetCode(), c.code);
        EXPECT_EQ(estimator.GetBetweenStudyVariannce(), -1.0);
        EXPECT_EQ(estimator.SetDiagH(&six).GetCode(), c.code) << "sticky";
        EXPECT_EQ(estimator.SetRegCoef(&three).GetCode(), c.code);
        EXPECT_EQ(estimator.SetDesignMatrix(nullptr).GetCode(), c.code);
    }
}

/// Neither before the first pass nor while an attached iterator was not read there are rows to estimate from.
TEST(MATAU2ESTIMATIORRegression, NeedsAReadyDesignMatrix)
{
    const MARegSettings settings = RegressionOn({2, 3});
    VectorRecordIter records(RandomStudies(1, 6, 2));
    MADesignMatrix matrix(settings);
    const std::vector<double> coefficients(3, 0.1);
    const auto code = [&] {
        MATAU2ESTIMATIOR estimator;
        estimator.SetRegCoef(&coefficients);
        estimator.SetDesignMatrix(&matrix);
        return estimator.ComputeTau2Variance(TAU2_HS).GetCode();
    };
    EXPECT_EQ(matrix.CacheRows().GetCode(), 460012);
    EXPECT_EQ(code(), 460002) << "no columns yet";
    EXPECT_TRUE(records.Start());
    EXPECT_TRUE(matrix.ReadFirstPass(records).IsOK());
    EXPECT_EQ(code(), 460012);
    matrix.AttachIterator(records);
    EXPECT_EQ(code(), 460012);
    EXPECT_TRUE(matrix.CacheRows().IsOK());
    EXPECT_EQ(code(), 0);
}
