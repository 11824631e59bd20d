// One tau² for all groups, and tests between groups after Knapp and Hartung.

#include "support/FinishedRun.h"
#include "support/Poolings.h"
#include "support/Published.h"
#include "support/Regression.h"

#include "meta_analysis/settings/MAEstimators.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// Log risk ratios of the trials of BCG by allocation.
struct ByAllocation : Published
{
    ByAllocation() : Published("bcg_vaccine")
    {
        settings.SetSubGroupIndex(data.IndexOf("allocation"));
        settings.SetCommonTau2(true);
        settings.SetTau2Search(TAU2_SEARCH_GLOBAL);
        settings.SetTau2Interval(TAU2_INTERVAL_Q_PROFILE);
    }
};

Row FTestOf(const MABaseModel& model)
{
    return {model.GetGDQbF(), model.GetGDQbFDf1(), model.GetGDQbFDf2(), model.GetGDQbFSig()};
}

MAModelSettings GroupSettings(KNAPPHADJTYPE adjustment, bool isCommon)
{
    MAModelSettings settings = EffectSettings();
    settings.SetSubGroupIndex(2);
    settings.SetKnapHartAdjustType(adjustment);
    settings.SetCommonTau2(isCommon);
    settings.SetTau2Search(TAU2_SEARCH_GLOBAL);
    return settings;
}

} // namespace

/// Figures of R's metafor 3.8-1, rma(mods = ~ factor(allocation)) with and without intercept.
TEST(CommonTau2, MeetsTheMetaRegressionOfAnotherProgram)
{
    const Rows figures = {{0.26829026332393, 1.97383532272241, -0.52301046794475, 0.38451126511613},
                          {0.19578069941500, 2.15260633047573, -0.52984061677183, 0.33365853525679},
                          {0.55956875012770, 1.43491245192235, -0.51253015554773, 0.54212220502084},
                          {0.34296758122183, 1.80579526578121, -0.51875916781681, 0.43052666469500},
                          {0.25739897330846, 2.00005176497890, -0.52381570883166, 0.37732200385658},
                          {0.36150366432402, 1.76751140193170, -0.51795577715529, 0.44119446038685},
                          {0.32366598351577, 1.84712720566802, -0.51968547857005, 0.41912566098570}};
    ByAllocation bcg;
    for (int estimator = 0; estimator < estimatorCount; ++estimator) {
        for (const TAU2SEARCH search : {TAU2_SEARCH_GLOBAL, TAU2_SEARCH_SCORING}) {
            bcg.settings.SetEstTauType(static_cast<TAU2ESTIMATOR>(estimator));
            bcg.settings.SetTau2Search(search);
            const BinRun run(bcg.settings, bcg.data.rows);
            EXPECT_TRUE(Close({run.model.GetTau2Var()[2], run.model.GetGDQbVal(),
                               run.model.GetEstEffectSize()[0], run.model.GetEstStdError()[0]},
                              figures[static_cast<std::size_t>(estimator)], 1e-10))
                << estimator;
        }
    }
}

/// Of the same program, test = "knha" and "adhoc": mean, standard error and bound of the second group, F and
/// p.
TEST(CommonTau2, AdjustsTheGroupsAsOneModel)
{
    ByAllocation bcg;
    const Rows figures = {
        {-0.96577417854585, 0.25558539270557, -1.53525392203330, 0.96622084481343, 0.41338374572162},
        {-0.96577417854585, 0.26724409406526, -1.56123112749653, 0.88375570096585, 0.44317664060086}};
    for (const KNAPPHADJTYPE adjustment :
         {KNAPP_HARTUNG_ADJUSTED, KNAPP_HARTUNG_TRUNCATED, KNAPP_HARTUNG_IF_HETEROGENEOUS}) {
        bcg.settings.SetKnapHartAdjustType(adjustment);
        const BinRun run(bcg.settings, bcg.data.rows);
        EXPECT_TRUE(Close({run.model.GetEstEffectSize()[1], run.model.GetEstStdError()[1],
                           run.model.GetEstCILower()[1], run.model.GetGDQbF(), run.model.GetGDQbFSig()},
                          figures[adjustment == KNAPP_HARTUNG_TRUNCATED], 1e-10));
        EXPECT_EQ(run.model.GetEstDf(), (Row{10, 10, 10, 12}));
        EXPECT_EQ(run.model.GetGDQbFDf2(), 10);
    }
}

/// Of the global maximum, its interval and likelihood, in groups whose variances span twenty powers of ten,
/// two of them of one study.
TEST(CommonTau2, EqualsTheRegressionOnTheGroups)
{
    Rows rows = RandomStudies(7, 30, 0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i][1] *= std::pow(10.0, i < 4 ? -10.0 * static_cast<double>(i) / 2 : 0.0);
        rows[i].push_back(i < 2 ? static_cast<double>(i) : 2.0 + static_cast<double>(i % 3));
    }
    for (const TAU2ESTIMATOR estimator : {TAU2_ML, TAU2_REML, TAU2_EB}) {
        MAModelSettings settings = GroupSettings(KNAPP_HARTUNG_ADJUSTED, true);
        settings.SetEstTauType(estimator);
        settings.SetTau2Interval(TAU2_INTERVAL_Q_PROFILE);
        const ContRun run(settings, rows);
        MARegSettings regression = RegressionOn({}, {2}, 5);
        regression.SetEstTauType(allEstimators[estimator].code);
        regression.SetTau2Search(TAU2_SEARCH_GLOBAL);
        regression.SetTau2Interval(TAU2_INTERVAL_Q_PROFILE);
        regression.SetKnapHartAdjust(true);
        const RERegression fit(regression, rows);
        EXPECT_TRUE(
            Close({run.model.GetTau2Var()[0], run.model.GetTau2CILower()[1], run.model.GetTau2CIUpper()[4],
                   run.model.GetLogLikelihood()[3], run.model.GetGDQbF(), run.model.GetGDQbFSig()},
                  {fit.output->GetTau(), fit.output->GetTau2CILower(), fit.output->GetTau2CIUpper(),
                   fit.output->GetLogLikelihood(), fit.output->GetFTestVal(), fit.output->GetFPValue()},
                  1e-9));
        EXPECT_EQ(run.model.GetGroupN(), (std::vector<int>{1, 1, 9, 9, 10}));
        EXPECT_EQ(run.model.GetI2CIUpper()[0], missing); // of one study
    }
}

/// With equal variances Welch's analysis of variance: by R 4.2.2, oneway.test.
TEST(GroupMeansTest, IsWelchsTestForGroupsApart)
{
    Rows rows;
    const Row effects = {0.1, 0.5, 0.3, -0.2, 1.1, 0.9, 1.6, 0.2, 0.4, 0.7, -0.1};
    for (std::size_t i = 0; i < effects.size(); ++i)
        rows.push_back({effects[i], 0.01, i < 4 ? 0.0 : i < 7 ? 1.0 : 2.0});
    const auto test = [&](const Rows& studies, KNAPPHADJTYPE adjustment, bool isCommon) {
        return FTestOf(ContRun(GroupSettings(adjustment, isCommon), studies).model);
    };
    const Row welch = {7.54172227830675, 2.0, 4.82757700738033, 0.03270699530135};
    EXPECT_TRUE(Close(test(rows, KNAPP_HARTUNG_ADJUSTED, false), welch, 1e-11));
    EXPECT_TRUE(Close(test({rows.begin(), rows.begin() + 7}, KNAPP_HARTUNG_ADJUSTED, false),
                      {16.00952380952381, 1.0, 3.89907656035104, 0.01694462904327}, 1e-11));
    const Row none(4, missing);
    EXPECT_EQ(test(rows, KNAPP_HARTUNG_NONE, false), none);
    EXPECT_EQ(test({rows.begin(), rows.begin() + 5}, KNAPP_HARTUNG_ADJUSTED, false), none); // a group of one
    EXPECT_EQ(test({rows.begin(), rows.begin() + 4}, KNAPP_HARTUNG_ADJUSTED, true), none);  // one group
    EXPECT_EQ(test({rows[0], rows[4], rows[7]}, KNAPP_HARTUNG_ADJUSTED, true), none);       // no df
    EXPECT_EQ(test({{1, 1, 0}, {1, 1, 0}, {1, 1, 1}, {1, 1, 1}}, KNAPP_HARTUNG_IF_HETEROGENEOUS, true), none);
}
