// What must hold of a meta-regression whatever the data.

#include "support/LeastSquares.h"
#include "support/Regression.h"

#include "meta_analysis/pooling/MARandomEffectModel.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const char* const codes[] = {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"};

/// Both iterations end at a step below 1e-12, from the same start but with rounding of their own.
constexpr double iteration = 1e-11;

constexpr double tolerance = 1e-11;

/// The fixed-effect regression in extended precision.
LeastSquares Exact(const Rows& rows)
{
    LeastSquares::Vector weights;
    for (const Row& row : rows)
        weights.push_back(1 / static_cast<long double>(row[1]));
    return LeastSquares(rows, weights);
}

void ExpectEqualsPooled(const Rows& rows, int estimator, KNAPPHADJTYPE adjustment)
{
    const Row effects = ColumnOf(rows, 0);
    const Row variances = ColumnOf(rows, 1);
    MARandomEffectModel pooled;
    pooled.SetEffectSizes(&effects);
    pooled.SetVariances(&variances);
    pooled.SetEstimationType(static_cast<TAU2ESTIMATOR>(estimator));
    pooled.SetKHAdjType(adjustment);
    pooled.SetConverTol(1e-12);
    pooled.SetMaxIter(10000);
    EXPECT_TRUE(pooled.EstimateMeanESStats().IsOK());

    MARegSettings settings = RegressionOn({});
    settings.SetEstTauType(codes[estimator]);
    settings.SetTestDistType(TEST_STANDARD_NORMAL); // which the adjustment overrides
    settings.SetKnapHartAdjust(adjustment != KNAPP_HARTUNG_NONE);
    settings.SetTruncAjustValue(adjustment == KNAPP_HARTUNG_TRUNCATED);
    const RERegression regression(settings, rows);
    const MARegOutputStats& output = *regression.output;
    const std::pair<double, double> figures[] = {
        {output.GetTau(), pooled.GetBetweenStudyVariance()},
        {output.GetEstimation().at(0), pooled.GetEstEffectSize()},
        {output.GetBetaStandErr().at(0), std::sqrt(pooled.GetEstESVariance())},
        {output.GetBetaTest().at(0), pooled.GetEstESTestStat()},
        {output.GetBetaTestPValue().at(0), pooled.GetEstESSig()},
        {output.GetBetaConfInterValUpper().at(0), pooled.GetEstESCIUpper()},
        {output.GetResHomoChiSqure(), pooled.GetHomogeneityTestQ()},
        {output.GetHresSquare(), pooled.GetHeterogeneityTestH2()},
        {output.GetIresSquare(), pooled.GetHeterogeneityTestI2()},
        {output.GetRSquare(), 0.0},
    };
    for (const auto& [actual, expected] : figures)
        EXPECT_TRUE(Close(actual, expected, iteration, 1.0)) << "figure " << actual;
}

/// Against extended precision, which loses about 1e-11 itself where the normal equations have a condition of
/// 1e8.
void ExpectExact(const Rows& rows)
{
    const LeastSquares exact = Exact(rows);
    const std::size_t p = exact.Coefficients().size();
    long double share = 0; // the largest of a column in the fitted values, and the measure of their errors
    for (std::size_t j = 0; j < p; ++j)
        share = std::max(share, std::abs(exact.Coefficients()[j]) * std::sqrt(exact.SquaredNorm(j)));

    const FERegression regression(RegressionOn({2, 3}), rows);
    const MARegOutputStats& output = *regression.output;
    ASSERT_EQ(output.GetRedundancyInfo().Count(), p);
    for (std::size_t j = 0; j < p; ++j) {
        const auto scale = static_cast<double>(share / std::sqrt(exact.SquaredNorm(j)));
        const auto b = static_cast<double>(exact.Coefficients()[j]);
        const auto stdError = static_cast<double>(std::sqrt(exact.InverseDiagonal(j)));
        EXPECT_TRUE(Close(output.GetEstimation()[j], b, tolerance, scale)) << j;
        EXPECT_TRUE(Close(output.GetBetaStandErr()[j], stdError, tolerance)) << j;
    }
    EXPECT_TRUE(Close(output.GetWaldChiSquareTest(), static_cast<double>(exact.ExplainedSum()), tolerance,
                      static_cast<double>(share * share)));
}

} // namespace

/// Of all estimators but Hunter and Schmidt's, whose residuals are those of an unweighted fit here.
TEST(MetaRegressionIdentities, InterceptAloneIsThePooledModel)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        for (const int estimator : {TAU2_HE, TAU2_DL, TAU2_SJ, TAU2_ML, TAU2_REML, TAU2_EB}) {
            for (const KNAPPHADJTYPE adjustment :
                 {KNAPP_HARTUNG_NONE, KNAPP_HARTUNG_ADJUSTED, KNAPP_HARTUNG_TRUNCATED}) {
                SCOPED_TRACE(codes[estimator] + testing::PrintToString(adjustment) + " seed " +
                             std::to_string(seed));
                ExpectEqualsPooled(RandomStudies(seed, 5 + seed, 0), estimator, adjustment);
            }
        }
    }
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
        for (const double factor : {0x1p60, 0x1p-60, -1.0}) {
            SCOPED_TRACE(testing::Message() << code << " times " << factor);
            Rows scaled = rows;
            for (Row& row : scaled)
                row[2] *= factor;
            const RERegression regression(settings, scaled);
            Row coefficients = original.output->GetEstimation();
            coefficients[1] /= factor;
            EXPECT_EQ(regression.output->GetEstimation(), coefficients);
            Row stdErrors = original.output->GetBetaStandErr();
            stdErrors[1] /= std::abs(factor);
            EXPECT_EQ(regression.output->GetBetaStandErr(), stdErrors);
            EXPECT_EQ(regression.output->GetTau(), original.output->GetTau());
            EXPECT_EQ(regression.output->GetFTestVal(), original.output->GetFTestVal());
            EXPECT_EQ(regression.output->GetResHomoChiSqure(), original.output->GetResHomoChiSqure());
            EXPECT_EQ(Scores(regression.engine, scaled[7]).Values(),
                      Scores(original.engine, rows[7]).Values());
        }
    }
}

/// One study with nearly all the weight: the trace of P, of which it has next to nothing, must not be a
/// difference of its weight and its weight times its leverage.
TEST(MetaRegressionIdentities, DominatingStudyLeavesTheDigitsOfHeterogeneity)
{
    Rows rows = RandomStudies(7, 8, 1);
    rows[3][1] = 1e-9;
    MARegSettings settings = RegressionOn({2});
    settings.SetEstTauType("DL");
    const RERegression regression(settings, rows);
    const LeastSquares::Matrix p = Exact(rows).P();
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
    EXPECT_TRUE(Close(regression.output->GetTau(), tau2, 1e-9));
    EXPECT_TRUE(Close(regression.output->GetHresSquare(), 1.0 + tau2 * static_cast<double>(trace / 6), 1e-9));
}

/// Calendar years as they are, beside a moderator of the scale 1e-6; a moderator far from zero; one that
/// differs from another by a small part only. None may be found redundant or lose digits.
TEST(MetaRegressionIdentities, BadlyScaledCovariatesLoseNoDigits)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        const Rows rows = RandomStudies(seed, 30, 2);
        Rows years = rows;
        Rows distant = rows;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            years[i][2] = std::round(1975 + 12 * rows[i][2]);
            years[i][3] *= 1e-6;
            distant[i][2] += 1e4;
        }
        ExpectExact(years);
        ExpectExact(distant);
        for (const double difference : {1e-2, 1e-3, 1e-4}) {
            Rows collinear = rows;
            for (Row& row : collinear)
                row[3] = row[2] + difference * row[3];
            ExpectExact(collinear);
        }
    }
}
