#include "support/Poolings.h"

#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// Effect and variance, then contrasts: zeros alone, weights, one with a missing coefficient, one with a NaN,
/// and missing ones alone.
const Rows effects = {{0.5, 0.04, 0, 1, 1, 0, missing},
                      {0.1, 0.25, 0, -2, missing, 0, missing},
                      {-0.3, 0.01, 0, 0.5, 3, notANumber, missing},
                      {0.7, 0.09, 0, 0, -1, 0, missing}};

MAModelSettings ContrastSettings(MAModelSettings settings, const std::vector<int>& contrasts)
{
    settings.SetModelType(MODEL_FIXED);
    settings.SetCILevel(0.9);
    settings.SetContrastCoefIndex(contrasts);
    return settings;
}

/// Contrast i is the sum over the coefficients that are there. `scale`: the size of the terms, whose last
/// digits depend on the order of the operations.
void ExpectContrast(const MABaseModel& model, std::size_t i, const Row& coefficients, bool zIsStdError,
                    double scale)
{
    double estimate = 0.0;
    double variance = 0.0;
    for (std::size_t study = 0; study < coefficients.size(); ++study) {
        const double c = coefficients[study] == missing ? 0.0 : coefficients[study];
        estimate += c * model.GetEffectSize()[study];
        variance += c * c * model.GetVariance()[study];
    }
    const double stdError = std::sqrt(variance);
    const double z = estimate / stdError;
    const double margin = 1.6448536269514722 * stdError;
    const double significance = 2 * KXDistFun::CdfStdNorm(-std::abs(z));
    const Row expected = {estimate,     stdError,          zIsStdError ? stdError : z,
                          significance, estimate - margin, estimate + margin};
    const Row actual = {model.GetContrastEstES().at(i),      model.GetContrastEstStdError().at(i),
                        model.GetContrastEstZVal().at(i),    model.GetContrastEstSig().at(i),
                        model.GetContrastEstCILower().at(i), model.GetContrastEstCIUpper().at(i)};
    EXPECT_TRUE(Close(actual, expected, 4 * machineEpsilon, scale));
}

} // namespace

TEST(Contrasts, AreSumsOverTheCoefficientsGiven)
{
    const ContRun run(ContrastSettings(EffectSettings(), {3, 2, 4, 5, 6}), effects);
    const MAContModel& model = run.model;
    EXPECT_TRUE(run.status.IsOK());
    EXPECT_EQ(model.GetContrastStatus(), (std::vector<int>{0, 1, 2, 0, 2}));
    EXPECT_TRUE(run.Warns(MAStatusCode::CONTRAST_COEFFICIENT_MISSING));
    ExpectContrast(model, 0, ColumnOf(effects, 3), false, 1.0);
    ExpectContrast(model, 2, ColumnOf(effects, 4), false, 1.0);
    // Nothing to test: sums of 0, but no z and no significance, those of the contrast before it least of all.
    EXPECT_EQ(model.GetContrastEstES()[1], 0.0);
    EXPECT_EQ(model.GetContrastEstCIUpper()[1], 0.0);
    EXPECT_EQ(model.GetContrastEstZVal()[1], missing);
    EXPECT_EQ(model.GetContrastEstSig()[1], missing);
    EXPECT_TRUE(std::isnan(model.GetContrastEstES()[3]));
    EXPECT_EQ(model.GetContrastEstStdError()[4], 0.0);
}

/// A run under random effects has no contrasts; the test itself is a fixed-effect one whatever the model. Of
/// one study the contrast is tested, and nothing else that comes after the model.
TEST(Contrasts, AreOfFixedEffects)
{
    MAModelSettings settings = ContrastSettings(EffectSettings(), {3, 4});
    const ContRun fixed(settings, effects);
    const ContRun one(settings, {effects[0]});
    EXPECT_EQ(one.model.GetContrastEstES(), (Row{0.5, 0.5}));
    EXPECT_TRUE(one.model.GetFunnelX().empty());
    settings.SetModelType(MODEL_RANDOM);
    ContRun random(settings, effects);
    EXPECT_TRUE(random.model.GetContrastEstES().empty());
    EXPECT_TRUE(random.model.FixedModelContrastTest().IsOK());
    EXPECT_EQ(random.model.GetContrastEstSig(), fixed.model.GetContrastEstSig());
    EXPECT_EQ(random.model.GetContrastStatus(), (std::vector<int>{0, 2}));
}

/// Contrasts of tables are of the studies' own effects; their z values are the standard errors once more.
TEST(Contrasts, OfTablesAreOfTheStudiesOwnEffects)
{
    const Rows tables = {
        {12, 88, 20, 80, 0, 1, 1}, {15, 85, 25, 75, 0, -2, missing}, {9, 91, 8, 92, 0, 0.5, 3}};
    for (const Pooling& pooling : poolings) {
        if (!pooling.IsBinary())
            continue;
        SCOPED_TRACE(pooling.name);
        const BinRun run(ContrastSettings(pooling.Of(TableSettings()), {5, 6, 4}), tables);
        const MABinModel& model = run.model;
        EXPECT_TRUE(model.GetContrastStatus().empty());
        EXPECT_TRUE(run.Warns(MAStatusCode::CONTRAST_COEFFICIENT_MISSING));
        ExpectContrast(model, 0, ColumnOf(tables, 5), true, 10.0); // logarithms of counts
        ExpectContrast(model, 1, ColumnOf(tables, 6), true, 10.0);
        EXPECT_EQ(model.GetContrastEstStdError()[2], 0.0);
        EXPECT_EQ(model.GetContrastExpEstES(), Exponentials(model.GetContrastEstES()));
        EXPECT_EQ(model.GetContrastExpEstCILower(), Exponentials(model.GetContrastEstCILower()));
        EXPECT_EQ(model.GetContrastExpEstCIUpper(), Exponentials(model.GetContrastEstCIUpper()));
    }
}

/// An odds ratio after Peto that is too large for a number, though its logarithm is not.
TEST(Contrasts, OfPetoOddsRatiosBeyondNumbers)
{
    MAModelSettings settings = ContrastSettings(TableSettings(), {4});
    settings.SetBinaryEstType(BIN_PETO_ODDS_RATIO);
    settings.SetBinZeroAdjType(ZERO_ADJUST_ALL_IF_ANY);
    const BinRun run(settings, {{1, 0, 0, 100000, 1}, {10, 90, 20, 80, -1}, {12, 88, 15, 85, 0}});
    const Row logs = run.model.GetEffectSize();
    ASSERT_GT(logs.at(0), 710.0);
    EXPECT_TRUE(Close(run.model.GetContrastEstES().at(0), logs[0] - logs[1], 4 * machineEpsilon));
    EXPECT_EQ(run.model.GetContrastExpEstES(), Row{infinity});
    EXPECT_EQ(run.model.GetExpEffectSize()[0], infinity);
}
