// What becomes of a record: a row of the design matrix, with a weight, or nothing.

#include "support/Regression.h"

#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAStatusCode;

namespace {

/// A model over factors 2 (three levels) and 3 (two levels) and covariates 4 and 5.
MARegSettings SettingsFor(const std::vector<KXModelEffect>& effects)
{
    MARegSettings settings;
    settings.SetDependent(0);
    settings.SetOMWVarIndex(1);
    settings.SetInterceptUse(true);
    settings.AddFactor(2, 3);
    settings.AddFactor(3, 2);
    settings.AddCovariate(4);
    settings.AddCovariate(5);
    for (const KXModelEffect& effect : effects)
        settings.AddModelEffect(effect);
    return settings;
}

const Rows studies = {{0.1, 0.5, 2, 0, 3, -2}, {0.2, 0.25, 0, 1, -1, 5}, {0.3, 0.2, 2, 1, 4, 0}};

/// A design matrix that has seen the records.
struct Matrix
{
    explicit Matrix(const MARegSettings& given, const Rows& rows = studies)
        : settings(given), design(settings)
    {
        VectorRecordIter records(rows);
        EXPECT_TRUE(records.Start());
        EXPECT_FALSE(design.ReadFirstPass(records).IsError());
    }

    MARegSettings settings;
    MADesignMatrix design;
};

} // namespace

TEST(MADesignMatrix, CodesEffects)
{
    struct Case
    {
        const char* name;
        KXModelEffect effect;
        std::vector<std::vector<int>> combinations;
        Rows columns; ///< of the effect, for each study
    };
    const Case cases[] = {
        {"covariate", EffectOf({}, {4}), {}, {{3}, {-1}, {4}}},
        {"power", EffectOf({}, {4, 4, 4}), {}, {{27}, {-1}, {64}}},
        {"product", EffectOf({}, {4, 5, 4}), {}, {{-18}, {5}, {0}}},
        {"factor", EffectOf({2}, {}), {{0}, {2}}, {{0, 1}, {1, 0}, {0, 1}}},
        {"two factors", EffectOf({3, 2}, {}), {{0, 2}, {1, 0}, {1, 2}}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
        {"factor by covariate", EffectOf({3}, {5}), {{0}, {1}}, {{-2, 0}, {0, 5}, {0, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Matrix matrix(SettingsFor({EffectOf({}, {5}), c.effect}));
        EXPECT_EQ(matrix.design.GetEffects()[1].GetStart(), 2) << "after the intercept and the first effect";
        EXPECT_EQ(matrix.design.GetEffects()[1].GetCombinations(), c.combinations);
        for (std::size_t i = 0; i < studies.size(); ++i) {
            Row expected = {1.0, studies[i][5]};
            expected.insert(expected.end(), c.columns[i].begin(), c.columns[i].end());
            MADesignRow row;
            EXPECT_TRUE(matrix.design.GetRow(Record(studies[i]), row, false).IsOK());
            EXPECT_EQ(row.predictors, expected);
        }
    }
}

/// The same record is unusable wherever it comes; the predictors alone may be usable.
TEST(MADesignMatrix, ChecksRecords)
{
    struct Case
    {
        int variable;
        std::vector<double> values;
        bool isUsable;
        bool arePredictorsUsable;
    };
    const Case cases[] = {
        {0, {missing, notANumber, infinity, 1e155}, false, true},             // whose square overflows
        {1, {missing, notANumber, infinity, 0.0, -0.1, 1e-310}, false, true}, // whose weight overflows
        {2, {2.4, -0.0}, true, true},
        {2, {2.5, -0.1, 3.0, 4294967297.0, missing, notANumber}, false, false},
        {3, {2.0}, false, false},                                  // a factor that no effect uses
        {4, {missing, notANumber, infinity, 1e200}, false, false}, // whose square overflows
        {5, {missing}, false, false},                              // a covariate that no effect uses
    };
    const MARegSettings settings = SettingsFor({EffectOf({2}, {}), EffectOf({}, {4, 4})});
    const FERegression without(settings, studies);
    for (const Case& c : cases) {
        for (const double value : c.values) {
            SCOPED_TRACE(testing::Message() << "variable " << c.variable << " is " << value);
            Row row = studies[0];
            row[static_cast<std::size_t>(c.variable)] = value;
            const Scores scores(without.engine, row);
            EXPECT_EQ(scores.status, c.arePredictorsUsable ? KXStatus() : KXStatus(UNUSABLE_RECORD, true));
            EXPECT_EQ(scores.fit == missing, !c.arePredictorsUsable);
            EXPECT_EQ(scores.leverage == missing, !c.isUsable);

            const FERegression with(settings, {studies[0], row, studies[1], studies[2]});
            EXPECT_EQ(with.output->GetNGoodRecords(), c.isUsable ? 4 : 3);
            EXPECT_EQ(with.output->GetNBadRecords(), c.isUsable ? 0 : 1);
            if (c.isUsable)
                continue;
            EXPECT_EQ(with.WarningCodes(), (std::vector<int>{UNUSABLE_RECORD, NO_RESIDUAL_DF}));
            EXPECT_EQ(with.output->GetEstimation(), without.output->GetEstimation());
        }
    }
    Row large = studies[0];
    large[4] = 1e100; // the predictor is its square, whose square overflows
    EXPECT_EQ(FERegression(settings, {large, studies[0], studies[1], studies[2]}).output->GetNBadRecords(),
              1);
    const Scores levelNotSeenBefore(without.engine, {0.1, 0.5, 1, 0, 3, -2});
    EXPECT_EQ(levelNotSeenBefore.status, KXStatus(UNUSABLE_RECORD, true));
    EXPECT_EQ(FERegression(MARegSettings(), studies).status, KXStatus(NO_USABLE_STUDY))
        << "without dependent";
}

/// The standard error of a single study is the root of its inverse weight.
TEST(MADesignMatrix, OmegaWeights)
{
    struct Case
    {
        int index, type;
        double value;
        double stdError; ///< missing for an unusable record
    };
    const Case cases[] = {{-1, 0, -5.0, 1.0},     {1, 0, 4.0, 0.5},        {1, 1, 4.0, 2.0},
                          {1, 2, 4.0, 4.0},       {1, 7, 4.0, 1.0},        {1, 1, 0.0, missing},
                          {1, 2, -4.0, missing},  {1, 7, -4.0, missing},   {1, 0, infinity, missing},
                          {1, 2, 1e200, missing}, {1, 2, 1e-200, missing}, {9, 0, 4.0, missing}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.index << ' ' << c.type << ' ' << c.value);
        MARegSettings settings = RegressionOn({});
        settings.SetOMWVarIndex(c.index);
        settings.SetOMWVarType(static_cast<MAConst::OMGWeightType>(c.type));
        const FERegression regression(settings, {{0.5, c.value}});
        EXPECT_EQ(regression.status, c.stdError == missing ? KXStatus(NO_USABLE_STUDY) : KXStatus());
        const Row expected = c.stdError == missing ? Row() : Row{c.stdError};
        EXPECT_EQ(regression.output->GetBetaStandErr(), expected);
    }
}
