#include "support/Compare.h"
#include "support/Tables.h"

#include "meta_analysis/pooling/MABinaryFixEffectModel.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const BINESTYPE methods[] = {BIN_ODDS_RATIO, BIN_PETO_ODDS_RATIO, BIN_RISK_RATIO, BIN_RISK_DIFFERENCE};
const Rows trials = {{4, 119, 11, 128}, {6, 300, 29, 274}, {3, 228, 11, 209}};

MABinaryFixEffectModel Given(Tables& tables, BINESTYPE method, ZEROADJTYPE adjustment = ZERO_ADJUST_NONE)
{
    MABinaryFixEffectModel model;
    tables.GiveTo(model);
    model.SetEstimationMethod(method);
    model.SetZeroAdjType(adjustment);
    return model;
}

MABinaryFixEffectModel Fitted(Tables& tables, BINESTYPE method)
{
    MABinaryFixEffectModel model = Given(tables, method);
    EXPECT_TRUE(model.ComputeEffectSizeStatistics().IsOK());
    return model;
}

} // namespace

/// A null value of 0 stands for a ratio of 1, and one of 1 for a difference of 0.
TEST(MABinaryFixEffectModel, NullValueOfTheOtherScaleMeansNoEffect)
{
    for (const BINESTYPE method : methods) {
        for (const double null : {0.0, 1.0, 0.5}) {
            SCOPED_TRACE(testing::Message() << "method " << method << ", null " << null);
            Tables tables(trials);
            MABinaryFixEffectModel model = Given(tables, method);
            model.SetNullHypothesis(null);
            model.ComputeEffectSizeStatistics();
            const bool isDifference = method == BIN_RISK_DIFFERENCE;
            const double meant = null == 0.5 ? null : isDifference ? 0.0 : 1.0;
            EXPECT_DOUBLE_EQ(model.GetEstESZVal(),
                             isDifference
                                 ? (model.GetEstESVal() - meant) / model.GetEstESStdError()
                                 : (model.GetLogEstESVal() - std::log(meant)) / model.GetLogEstESStdError());
        }
    }
}

/// The pooled variance of one table is that of its own log risk ratio, 1/a - 1/n₁ + 1/c - 1/n₂, which a
/// million events leave 12 digits apart.
TEST(MABinaryFixEffectModel, VarianceOfRiskRatiosKeepsItsDigits)
{
    Tables tables({{1e6, 1, 1e6, 1}});
    const MABinaryFixEffectModel model = Fitted(tables, BIN_RISK_RATIO);
    EXPECT_TRUE(Close(model.GetLogEstESVariance(), 2.0 / (1e6 * 1000001.0), 4 * machineEpsilon));
}

/// A study without an odds or risk ratio of its own still has its share in the pooled one.
TEST(MABinaryFixEffectModel, PooledRatiosAreRatiosOfSums)
{
    Tables tables({{10, 0, 8, 12}, {5, 15, 0, 20}, {0, 10, 3, 7}});
    const MABinaryFixEffectModel odds = Fitted(tables, BIN_ODDS_RATIO);
    EXPECT_DOUBLE_EQ(odds.GetEstESVal(), (10 * 12 / 30.0 + 5 * 20 / 40.0) / (10 * 3 / 20.0));
    EXPECT_EQ(odds.GetEstWeight(), (std::vector<double>{0, 0, 1.5}));
    const MABinaryFixEffectModel risk = Fitted(tables, BIN_RISK_RATIO);
    EXPECT_DOUBLE_EQ(risk.GetEstESVal(), (10 * 20 / 30.0 + 5 * 20 / 40.0) / (8 * 10 / 30.0 + 3 * 10 / 20.0));
}

/// Whatever constant is set, the correction adds 0.5; and again at every computation.
TEST(MABinaryFixEffectModel, ZeroCellsAreCorrectedByHalfAtEveryComputation)
{
    Tables tables({{1, 0, 3, 4}, {4, 5, 6, 7}});
    MABinaryFixEffectModel model = Given(tables, BIN_ODDS_RATIO, ZERO_ADJUST_ALL_IF_ANY);
    EXPECT_TRUE(model.SetZeroCountDelta(0.3).IsOK());
    model.ComputeEffectSizeStatistics();
    EXPECT_EQ(tables.ToRows(), (Rows{{1.5, 0.5, 3.5, 4.5}, {4.5, 5.5, 6.5, 7.5}}));
    model.SetZeroAdjType(ZERO_ADJUST_ALL);
    model.ComputeEffectSizeStatistics();
    EXPECT_EQ(tables.ToRows(), (Rows{{2, 1, 4, 5}, {5, 6, 7, 8}}));
}

TEST(MABinaryFixEffectModel, ResultsOfTheOtherScaleAreExponentialsOrLogarithms)
{
    Tables tables(trials);
    const MABinaryFixEffectModel difference = Fitted(tables, BIN_RISK_DIFFERENCE);
    EXPECT_LT(difference.GetEstESVal(), 0.0);
    EXPECT_TRUE(std::isnan(difference.GetLogEstESVal()));
    EXPECT_TRUE(std::isnan(difference.GetLogEstESCILower()));
    EXPECT_DOUBLE_EQ(difference.GetLogEstESVariance(), std::log(difference.GetEstESVariance()));
    EXPECT_DOUBLE_EQ(difference.GetLogEstESStdError(), std::log(difference.GetEstESStdError()));
    const MABinaryFixEffectModel odds = Fitted(tables, BIN_ODDS_RATIO);
    EXPECT_DOUBLE_EQ(odds.GetEstESVariance(), std::exp(odds.GetLogEstESVariance()));
    EXPECT_DOUBLE_EQ(odds.GetEstESStdError(), std::sqrt(odds.GetEstESVariance()));
}

TEST(MABinaryFixEffectModel, ContrastIsOfTheEffectsComputedLast)
{
    Tables tables(trials);
    MABinaryFixEffectModel model = Fitted(tables, BIN_ODDS_RATIO);
    const std::vector<double> coefficients = {1, -1, 0};
    model.SetContrastCoef(&coefficients);
    model.ContrastTest();
    model.SetEstimationMethod(BIN_RISK_DIFFERENCE);
    model.ComputeEffectSizeStatistics();
    model.ContrastTest();
    EXPECT_NEAR(model.GetContrastTestGMeans(), 4.0 / 123 - 11.0 / 139 - (6.0 / 306 - 29.0 / 303), 1e-16);
}

TEST(MABinaryFixEffectModel, ContrastWithATableWithoutEffectIsMissing)
{
    struct Case
    {
        BINESTYPE effect;
        Row table; ///< has no effect
    };
    for (const Case& one :
         {Case{BIN_ODDS_RATIO, {0, 10, 3, 7}}, Case{BIN_RISK_RATIO, {0, 10, 3, 7}},
          Case{BIN_PETO_ODDS_RATIO, {0, 10, 0, 7}}, Case{BIN_RISK_DIFFERENCE, {0, 0, 3, 7}}}) {
        SCOPED_TRACE(one.effect);
        Tables tables({{12, 88, 20, 80}, one.table, {15, 85, 25, 75}});
        MABinaryFixEffectModel model = Fitted(tables, one.effect);
        const std::vector<double> withIt = {1, -1, 0};
        model.SetContrastCoef(&withIt);
        EXPECT_TRUE(model.ContrastTest().IsOK());
        EXPECT_EQ((Row{model.GetContrastTestGMeans(), model.GetContrastTestStdError(),
                       model.GetContrastTest2SidedSig(), model.GetContrastTestCILower(),
                       model.GetContrastTestCIUpper()}),
                  Row(5, missing));
    }
}
