// The estimators of the between-study variance, of effects and of the residuals of a meta-regression.

#include "support/LeastSquares.h"
#include "support/Regression.h"

#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <functional>

using namespace MA_NAMESPACE;
using namespace MAConst;
using namespace MAStatusCode;

namespace {

const char* const codes[] = {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"}; // in the order of their numbers

/// What the estimators are made of, for a fit with weights W; the last two with the inverse variances.
struct QuadraticForms
{
    QuadraticForms(const Rows& rows, const std::function<long double(long double)>& weightOfVariance)
    {
        LeastSquares::Vector w;
        for (const Row& row : rows)
            w.push_back(weightOfVariance(row[1]));
        const LeastSquares::Matrix p = LeastSquares(rows, w).P();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            long double residual = 0; // times its weight
            for (std::size_t j = 0; j < rows.size(); ++j) {
                residual += p[i][j] * rows[j][0];
                tracePP += p[i][j] * p[i][j];
            }
            yPy += residual * rows[i][0];
            yPPy += residual * residual;
            trace += p[i][i];
            tracePV += p[i][i] * rows[i][1];
            weights += w[i];
            squaredWeights += w[i] * w[i];
            q += residual * residual / (w[i] * w[i]) / rows[i][1];
            precision += 1 / static_cast<long double>(rows[i][1]);
        }
    }

    long double yPy = 0, yPPy = 0, trace = 0, tracePP = 0, tracePV = 0, weights = 0, squaredWeights = 0;
    long double q = 0, precision = 0;
};

/// The scoring step of an iterative estimator: a difference over a denominator.
struct Step
{
    long double left, right, denominator;

    long double Value() const { return (left - right) / denominator; }
    long double TermSize() const { return (left + right) / denominator; }
};

Step StepAt(const std::string& code, const Rows& rows, long double tau2)
{
    const QuadraticForms f(rows, [&](long double v) { return 1 / (v + tau2); });
    const auto k = static_cast<long double>(rows.size());
    if (code == "EB")
        return {k / (k - static_cast<long double>(rows[0].size() - 1)) * f.yPy, k, f.weights};
    return code == "ML" ? Step{f.yPPy, f.weights, f.squaredWeights} : Step{f.yPPy, f.trace, f.tracePP};
}

/// A step is halved until it can be taken.
long double Iterated(const std::string& code, const Rows& rows, long double tau2)
{
    long double step = StepAt(code, rows, tau2).Value();
    while (tau2 + step < 0)
        step /= 2;
    return tau2 + step;
}

/// The estimators that figures alone do not pin down: an iteration that is cut short, and Hunter and
/// Schmidt's.
long double Expected(const std::string& code, const Rows& rows, int iterations)
{
    const auto k = static_cast<long double>(rows.size());
    const long double df = k - static_cast<long double>(rows[0].size() - 1);
    const QuadraticForms unweighted(rows, [](long double) { return 1; });
    if (code == "HS")
        return std::max(0.0L, (unweighted.q - k) / unweighted.precision);
    long double tau2 = std::max(0.0L, (unweighted.yPy - unweighted.tracePV) / df);
    for (int i = 0; i < iterations; ++i)
        tau2 = Iterated(code, rows, tau2);
    return tau2;
}

/// Of effects and variances alone.
struct Plain : MATAU2ESTIMATIOR
{
    explicit Plain(const Rows& rows, double tolerance = 1e-12, int iterations = 100, int halvings = 5)
        : effects(ColumnOf(rows, 0)), variances(ColumnOf(rows, 1))
    {
        SetEffectSizes(&effects);
        SetVariances(&variances);
        SetConverTol(tolerance);
        SetMaxIter(iterations);
        SetMaxStepHalving(halvings);
    }

    double Estimate(int type)
    {
        EXPECT_TRUE(ComputeTau2Variance(static_cast<TAU2ESTIMATOR>(type)).IsOK());
        return GetBetweenStudyVariannce();
    }

    Row effects;
    Row variances;
};

} // namespace

/// Each iteration, not the end alone: a wrong denominator of the step would end at the same root. Before the
/// first there is Hedges' estimate. A redundant column changes nothing.
TEST(MATAU2ESTIMATIOR, EqualsTheDefinitionsWithSquareMatrices)
{
    for (unsigned seed = 1; seed <= 25; ++seed) {
        const std::size_t moderators = seed % 3;
        const Rows rows = RandomStudies(seed, 8 + seed, moderators);
        Rows withRedundant = rows;
        for (Row& row : withRedundant)
            row.resize(4, moderators == 1 ? 1 - 2 * row[2] : 0.7);
        for (const char* const code : {"HS", "ML", "REML", "EB"}) {
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
TEST(MATAU2ESTIMATIOR, PlainStepIsRightHoweverUnequalTheWeights)
{
    for (unsigned seed = 1; seed <= 50; ++seed) {
        for (const double dominance : {1.0, 1e3, 1e6, 1e10}) {
            Rows rows = RandomStudies(seed, 6, 0);
            rows[2][1] /= dominance;
            Plain estimator(rows, 0, 1, 100);
            const double start = estimator.Estimate(TAU2_HE);
            for (const int type : {TAU2_ML, TAU2_REML, TAU2_EB}) {
                const char* const code = codes[type];
                SCOPED_TRACE(testing::Message() << code << ", dominance " << dominance << ", seed " << seed);
                const auto expected = static_cast<double>(Iterated(code, rows, start));
                const auto scale = static_cast<double>(StepAt(code, rows, start).TermSize());
                EXPECT_TRUE(Close(estimator.Estimate(type), expected, 8 * machineEpsilon * dominance, scale));
            }
        }
    }
}

TEST(MATAU2ESTIMATIOR, OneStudyHasNone)
{
    for (int type = TAU2_HE; type <= TAU2_EB; ++type) {
        EXPECT_EQ(Plain(Rows()).Estimate(type), 0.0) << codes[type];
        for (int i = 1; i <= 100; ++i)
            EXPECT_EQ(Plain({{0.1 * i, 0.01 * i}}).Estimate(type), 0.0) << codes[type] << ", study " << i;
    }
}

/// Two studies at -1 and 1 with variance 1.9: the Hedges estimate is 0.1, and every step leads to -0.9.
/// A sixteenth of the first, then a thirty-second of the second can be taken; the third would need the
/// seventh half.
TEST(MATAU2ESTIMATIOR, StepsEndAtTheLimits)
{
    struct Case
    {
        double tolerance;
        int iterations, halvings;
        double end;
    };
    const Case cases[] = {
        {1e-12, 100, 5, 0.008203125}, {1e-12, 100, 4, 0.008203125},
        {1e-12, 100, 3, 0.0375},      {1e-12, 100, 2, 0.1},
        {1e-12, 100, 0, 0.1},         {1e-12, 1, 5, 0.0375},
        {1e-12, 0, 5, 0.1},           {10, 100, 5, 0.1}, // small steps are not taken
    };
    for (const Case& c : cases) {
        Plain estimator({{-1, 1.9}, {1, 1.9}}, c.tolerance, c.iterations, c.halvings);
        EXPECT_NEAR(estimator.Estimate(TAU2_ML), c.end, 1e-15) << "case " << &c - cases;
    }
}

TEST(MATAU2ESTIMATIOR, UnknownTypeLeavesTheEstimate)
{
    Plain estimator({{0, 1}, {1, 1}, {4, 1}});
    EXPECT_EQ(estimator.Estimate(9), -1.0);
    EXPECT_NEAR(estimator.Estimate(TAU2_DL), 13.0 / 3 - 1, 1e-14);
    EXPECT_NEAR(estimator.Estimate(9), 13.0 / 3 - 1, 1e-14);
    EXPECT_EQ(estimator.SetNonRedundantParamSize(2), KXStatus(TOO_MANY_NONREDUNDANT));
    EXPECT_EQ(estimator.GetBetweenStudyVariannce(), -1.0);
}
