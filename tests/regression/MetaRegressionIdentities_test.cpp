// What must hold of a meta-regression whatever the data.

#include "support/LeastSquares.h"
#include "support/Regression.h"

#include "meta_analysis/pooling/MARandomEffectModel.h"

#include <numeric>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const char* const codes[] = {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"};

/// Sums of a few dozen terms of like size, in another order or by another formula.
constexpr double rounding = 1e-13;
/// Both iterations end at a step below 1e-12, from the same start but with rounding of their own.
constexpr double iteration = 1e-11;

MARandomEffectModel Pooled(const Rows& rows, int estimator, KNAPPHADJTYPE adjustment)
{
    const Row effects = ColumnOf(rows, 0);
    const Row variances = ColumnOf(rows, 1);
    MARandomEffectModel model;
    model.SetEffectSizes(&effects);
    model.SetVariances(&variances);
    model.SetEstimationType(static_cast<TAU2ESTIMATOR>(estimator));
    model.SetKHAdjType(adjustment);
    model.SetConverTol(1e-12);
    model.SetMaxIter(10000);
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
    return model;
}

void ExpectEqualsPooled(const MARegOutputStats& output, const MARandomEffectModel& pooled)
{
    const double stdError = std::sqrt(pooled.GetEstESVariance());
    EXPECT_NEAR(output.GetTau(), pooled.GetBetweenStudyVariance(), iteration);
    EXPECT_TRUE(Close(output.GetEstimation().at(0), pooled.GetEstEffectSize(), iteration, stdError));
    EXPECT_TRUE(Close(output.GetBetaStandErr().at(0), stdError, iteration));
    EXPECT_TRUE(Close(output.GetBetaTest().at(0), pooled.GetEstESTestStat(), iteration));
    EXPECT_NEAR(output.GetBetaTestPValue().at(0), pooled.GetEstESSig(), iteration);
    EXPECT_TRUE(
        Close(output.GetBetaConfInterValUpper().at(0), pooled.GetEstESCIUpper(), iteration, stdError));
    EXPECT_TRUE(Close(output.GetResHomoChiSqure(), pooled.GetHomogeneityTestQ(), rounding));
    EXPECT_TRUE(Close(output.GetHresSquare(), pooled.GetHeterogeneityTestH2(), iteration));
    EXPECT_TRUE(Close(output.GetIresSquare(), pooled.GetHeterogeneityTestI2(), iteration, 1.0));
    EXPECT_NEAR(output.GetRSquare(), 0.0, iteration);
}

} // namespace

/// Of all estimators but Hunter and Schmidt's, whose residuals are those of an unweighted fit here.
TEST(MetaRegressionIdentities, InterceptOnlyEqualsThePlainEstimate)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        const Rows rows = RandomStudies(seed, 5 + seed, 0);
        for (const int estimator : {TAU2_HE, TAU2_DL, TAU2_SJ, TAU2_ML, TAU2_REML, TAU2_EB}) {
            for (const KNAPPHADJTYPE adjustment :
                 {KNAPP_HARTUNG_NONE, KNAPP_HARTUNG_ADJUSTED, KNAPP_HARTUNG_TRUNCATED}) {
                SCOPED_TRACE(testing::Message()
                             << codes[estimator] << ' ' << adjustment << ", seed " << seed);
                MARegSettings settings = RegressionOn({});
                settings.SetEstTauType(codes[estimator]);
                settings.SetTestDistType(TEST_STANDARD_NORMAL); // which the adjustment overrides
                settings.SetKnapHartAdjust(adjustment != KNAPP_HARTUNG_NONE);
                settings.SetTruncAjustValue(adjustment == KNAPP_HARTUNG_TRUNCATED);
                const RERegression regression(settings, rows);
                ExpectEqualsPooled(*regression.output, Pooled(rows, estimator, adjustment));
            }
        }
    }
}

TEST(MetaRegressionIdentities, OneFactorWithoutInterceptGivesTheSubgroupMeans)
{
    Rows rows = RandomStudies(3, 17, 0);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].push_back(static_cast<double>((i * 5) % 4));
    MARegSettings settings = RegressionOn({}, {2}, 4);
    settings.SetInterceptUse(false);
    const FERegression regression(settings, rows);
    ASSERT_EQ(regression.output->GetEstimation().size(), 4U);
    double q = 0.0;
    for (std::size_t level = 0; level < 4; ++level) {
        double weightSum = 0.0, sum = 0.0, squares = 0.0;
        for (const Row& row : rows) {
            if (row[2] == static_cast<double>(level)) {
                weightSum += 1.0 / row[1];
                sum += row[0] / row[1];
                squares += row[0] * row[0] / row[1];
            }
        }
        q += squares - sum * sum / weightSum;
        EXPECT_TRUE(Close(regression.output->GetEstimation()[level], sum / weightSum, rounding));
        EXPECT_TRUE(Close(regression.output->GetBetaStandErr()[level], 1.0 / std::sqrt(weightSum), rounding));
    }
    EXPECT_TRUE(Close(regression.output->GetResHomoChiSqure(), q, 1e-12)) << "a difference of squares here";
    EXPECT_EQ(regression.output->GetResHomoDf(), 13);
    EXPECT_EQ(regression.output->GetWaldDf(), 4) << "there is no intercept to leave out";
}

/// A power of two scales without rounding, and so must everything computed from it, the choice of the
/// redundant columns included.
TEST(MetaRegressionIdentities, ScaleOfACovariateScalesItsCoefficientAndNothingElse)
{
    const Rows rows = RandomStudies(5, 15, 2);
    for (const char* const code : codes) {
        MARegSettings settings = RegressionOn({2, 3});
        settings.SetEstTauType(code);
        settings.SetKnapHartAdjust(true);
        const RERegression original(settings, rows);
        for (const double factor : {std::ldexp(1.0, 60), std::ldexp(1.0, -60), -1.0}) {
            SCOPED_TRACE(testing::Message() << code << " times " << factor);
            Rows scaled = rows;
            for (Row& row : scaled)
                row[2] *= factor;
            const RERegression regression(settings, scaled);
            std::vector<double> expected = original.output->GetEstimation();
            expected[1] /= factor;
            EXPECT_TRUE(Same(regression.output->GetEstimation(), expected));
            expected = original.output->GetBetaStandErr();
            expected[1] /= std::abs(factor);
            EXPECT_TRUE(Same(regression.output->GetBetaStandErr(), expected));
            EXPECT_EQ(regression.output->GetTau(), original.output->GetTau());
            EXPECT_EQ(regression.output->GetFTestVal(), original.output->GetFTestVal());
            EXPECT_EQ(regression.output->GetResHomoChiSqure(), original.output->GetResHomoChiSqure());
            for (std::size_t i = 0; i < rows.size(); ++i)
                EXPECT_TRUE(Same(Scores(regression.engine, scaled[i]).Values(),
                                 Scores(original.engine, rows[i]).Values()));
        }
    }
}

namespace {

/// Rounding errors of the normal equations, in proportion to their condition with columns scaled alike: p
/// times the largest inflation of a coefficient's variance bounds it.
double ToleranceOf(const LeastSquares& exact)
{
    const std::size_t p = exact.Coefficients().size();
    long double inflation = 1;
    for (std::size_t j = 0; j < p; ++j)
        inflation = std::max(inflation, exact.InverseDiagonal(j) * exact.SquaredNorm(j));
    return 8 * machineEpsilon * static_cast<double>(p * inflation);
}

void ExpectExact(const Rows& rows)
{
    LeastSquares::Vector weights;
    for (const Row& row : rows)
        weights.push_back(1 / static_cast<long double>(row[1]));
    const LeastSquares exact(rows, weights);
    const double tolerance = ToleranceOf(exact);
    const FERegression regression(RegressionOn({2, 3}), rows);
    const MARegOutputStats& output = *regression.output;
    ASSERT_LT(tolerance, 1e-4) << "there must be something to compare";
    ASSERT_EQ(output.GetRedundancyInfo().Count(), 3U) << "tolerance " << tolerance;

    // One error for the shares of all columns in the fitted values.
    long double share = 0;
    for (std::size_t j = 0; j < 3; ++j)
        share = std::max(share, std::abs(exact.Coefficients()[j]) * std::sqrt(exact.SquaredNorm(j)));
    for (std::size_t j = 0; j < 3; ++j) {
        const auto scale = static_cast<double>(share / std::sqrt(exact.SquaredNorm(j)));
        const auto b = static_cast<double>(exact.Coefficients()[j]);
        const auto stdError = static_cast<double>(std::sqrt(exact.InverseDiagonal(j)));
        EXPECT_TRUE(Close(output.GetEstimation()[j], b, tolerance, scale)) << j;
        EXPECT_TRUE(Close(output.GetBetaStandErr()[j], stdError, tolerance)) << j;
    }
    EXPECT_TRUE(Close(output.GetWaldChiSquareTest(), static_cast<double>(exact.ExplainedSum()), tolerance,
                      static_cast<double>(share * share)));
}

/// One study with nearly all the weight: the trace of P, of which it has next to nothing, must not be a
/// difference of its weight and its weight times its leverage.
TEST(MetaRegression, DominatingStudyLeavesTheDigitsOfHeterogeneity)
{
    Rows rows = RandomStudies(7, 8, 1);
    rows[3][1] = 1e-9;
    MARegSettings settings = RegressionOn({2});
    settings.SetEstTauType("DL");
    const RERegression regression(settings, rows);
    LeastSquares::Vector weights;
    for (const Row& row : rows)
        weights.push_back(1.0L / row[1]);
    const LeastSquares::Matrix p = LeastSquares(rows, weights).P();
    long double q = 0;
    long double trace = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        trace += p[i][i];
        for (std::size_t j = 0; j < rows.size(); ++j)
            q += static_cast<long double>(rows[i][0]) * p[i][j] * rows[j][0];
    }
    // In extended precision the dominating weight of 1e9 leaves 10 of 19 digits of the differences.
    const auto tau2 = static_cast<double>((q - 6) / trace);
    ASSERT_GT(tau2, 0.0);
    EXPECT_TRUE(Close(regression.output->GetTau(), tau2, 1e-7));
    EXPECT_TRUE(Close(regression.output->GetHresSquare(), 1.0 + tau2 * static_cast<double>(trace / 6), 1e-7));
}

/// Cross products with a condition of 1e8, as those of years that are not centred, have half the digits; the
/// coefficients, corrected by the regression of their residuals, have nearly all.
TEST(MetaRegression, CoefficientsKeepTheirDigitsWhateverTheCondition)
{
    Rows rows = RandomStudies(11, 40, 1);
    for (Row& row : rows)
        row[2] += 1e4;
    const FERegression regression(RegressionOn({2}), rows);
    LeastSquares::Vector weights;
    for (const Row& row : rows)
        weights.push_back(1.0L / row[1]);
    const LeastSquares expected(rows, weights);
    for (std::size_t j = 0; j < 2; ++j)
        EXPECT_TRUE(Close(regression.output->GetEstimation()[j],
                          static_cast<double>(expected.Coefficients()[j]), 1e-11));
}

} // namespace

/// Calendar years as they are, beside a moderator of the scale 1e-6; and a moderator that differs from
/// another by a small part only. None may be found redundant, or lose more digits than the condition costs.
TEST(MetaRegressionIdentities, BadlyScaledAndNearlyCollinearCovariates)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        Rows scaled = RandomStudies(seed, 30, 2);
        for (Row& row : scaled) {
            row[2] = std::round(1975 + 12 * row[2]);
            row[3] *= 1e-6;
        }
        ExpectExact(scaled);
        for (const double difference : {1e-2, 1e-3, 1e-4}) {
            Rows collinear = RandomStudies(seed, 30, 2);
            for (Row& row : collinear)
                row[3] = row[2] + difference * row[3];
            ExpectExact(collinear);
        }
    }
}
