#include "support/PooledFigures.h"
#include "support/Poolings.h"
#include "support/Published.h"

#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

using Records = std::vector<std::vector<int>>;

struct GroupFigures
{
    const char* dataSet;
    const char* key;
    const char* column;
    MODELTYPE model;
    TAU2ESTIMATOR estimator;
    double tolerance;
};

const GroupFigures groupFigures[] = {
    {"bcg_vaccine", "subgroup_by_allocation_fixed", "allocation", MODEL_FIXED, TAU2_DL, closedFormTolerance},
    {"bcg_vaccine", "subgroup_by_allocation_REML", "allocation", MODEL_RANDOM, TAU2_REML, iterativeTolerance},
    {"teacher_expectancy", "subgroup_by_tester_REML", "tester", MODEL_RANDOM, TAU2_REML, iterativeTolerance},
    {"writing_to_learn", "subgroup_by_grade_DL", "grade", MODEL_RANDOM, TAU2_DL, closedFormTolerance},
};

/// Tables, the group, and a contrast coefficient that is the order of a cumulative analysis as well.
const Rows studies = {{12, 88, 20, 80, 2, 1}, {15, 85, 25, 75, 1, 2}, {9, 91, 8, 92, 2, 3},
                      {5, 95, 9, 91, 3, 4},   {45, 55, 25, 75, 1, 5}, {11, 89, 19, 81, 2, 6}};

Rows WithGroups(Rows rows, const Row& values)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i][4] = values[i];
    return rows;
}

MAModelSettings GroupSettings()
{
    MAModelSettings settings = TableSettings();
    settings.SetSubGroupIndex(4);
    return settings;
}

} // namespace

TEST(Subgroups, MeetTheReferenceFigures)
{
    for (const GroupFigures& row : groupFigures) {
        SCOPED_TRACE(row.key);
        Published published(row.dataSet);
        published.settings.SetSubGroupIndex(published.data.IndexOf(row.column));
        published.settings.SetModelType(row.model);
        published.settings.SetEstTauType(row.estimator);
        const nlohmann::json& figures = published.figures.at(row.key);
        const nlohmann::json& groups = figures.at("groups");
        const BinRun run(published.settings, published.data.rows);
        ASSERT_EQ(run.model.GetUniGroup().size(), groups.size() + 1);
        for (std::size_t g = 0; g <= groups.size(); ++g) {
            SCOPED_TRACE(testing::Message() << "group " << g);
            const nlohmann::json& group = g < groups.size() ? groups[g] : figures.at("overall");
            EXPECT_TRUE(Close(run.model.GetEstEffectSize().at(g), group.at("estimate"), row.tolerance));
            EXPECT_TRUE(Close(run.model.GetEstStdError().at(g), group.at("se"), row.tolerance));
            const double tau2 = row.model == MODEL_RANDOM ? group.at("tau2").get<double>() : missing;
            EXPECT_TRUE(Close(run.model.GetTau2Var().at(g), tau2, row.tolerance));
            EXPECT_EQ(run.model.GetUniGroup()[g], group.value("group", -1.0));
        }
        EXPECT_TRUE(Close(run.model.GetGDQbVal(), figures.at("Qb"), row.tolerance));
        EXPECT_EQ(run.model.GetGDQbDf(), figures.at("Qb_df"));
        EXPECT_NEAR(run.model.GetGDQbSig(), figures.at("Qb_p"), row.tolerance);
    }
}

/// Every group has the results of a run on its studies, and the overall model those of a run without groups.
TEST(Subgroups, GroupsAreRunsOfTheirOwn)
{
    const Row labels = {1, 2, 3, -1};
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings settings = pooling.Of(GroupSettings());
        const MAModelSettings plain = pooling.Of(TableSettings());
        const BinRun run(settings, studies);
        EXPECT_EQ(run.model.GetUniGroup(), labels);
        EXPECT_EQ(run.model.GetGroupN(), (std::vector<int>{2, 3, 1}));
        EXPECT_EQ(run.model.GetSubGroupStudyID(), (Records{{1, 4}, {0, 2, 5}, {3}}));
        for (std::size_t g = 0; g < labels.size(); ++g) {
            SCOPED_TRACE(testing::Message() << "group " << labels[g]);
            Rows members;
            for (const Row& study : studies) {
                if (labels[g] == -1 || study[4] == labels[g])
                    members.push_back(study);
            }
            const BinRun own(plain, members);
            EXPECT_TRUE(SameEntries(estimateColumns, run.model, g, own.model, 0));
            EXPECT_TRUE(SameEntries(heterogeneityColumns, run.model, g, own.model, 0));
            EXPECT_TRUE(!pooling.IsRatio() || SameEntries(ratioColumns, run.model, g, own.model, 0));
        }
        EXPECT_EQ(run.model.GetEstEffectSize().size(), 4U);
        EXPECT_EQ(run.model.GetTau2Var().size(), 4U);
        EXPECT_EQ(run.model.GetEstExpEffectSize().size(), pooling.IsRatio() ? 4U : 0U);
        EXPECT_EQ(run.model.GetWeight(), BinRun(plain, studies).model.GetWeight());
    }
}

/// The weights are inverse variances, also where tables are pooled otherwise; calls add up.
TEST(Subgroups, TestBetweenGroupsIsOfInverseVariances)
{
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings settings = pooling.Of(GroupSettings());
        MAModelSettings inverse = settings;
        inverse.SetWeightType(WEIGHT_INVERSE_VARIANCE);
        BinRun run(settings, studies);
        const double q = run.model.GetGDQbVal();
        EXPECT_TRUE(Close(q, BinRun(inverse, studies).model.GetGDQbVal(), 1e-14));
        EXPECT_EQ(run.model.GetGDQbDf(), 2);
        EXPECT_NEAR(run.model.GetGDQbSig(), std::exp(-q / 2), 1e-15); // of two degrees of freedom

        pooling.IsBinary() ? run.model.BuildBinSubGroupModel() : run.model.BuildSubGroupModel();
        EXPECT_DOUBLE_EQ(run.model.GetGDQbVal(), 2 * q);
        EXPECT_EQ(run.model.GetGroupN(), (std::vector<int>{2, 3, 1, 2, 3, 1}));
        EXPECT_EQ(run.model.GetEstEffectSize().size(), 8U);
    }
}

/// The build itself adds the group, which holds all studies, and the whole.
TEST(Subgroups, OneGroupIsTheWhole)
{
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings settings = pooling.Of(GroupSettings());
        const MAModelSettings plain = pooling.Of(TableSettings());
        const BinRun whole(plain, studies);
        BinRun run(settings, WithGroups(studies, Row(6, 7.0)));
        EXPECT_EQ(run.model.GetUniGroup(), Row{7});
        EXPECT_EQ(run.model.GetGroupN(), std::vector<int>{6});
        EXPECT_EQ(run.model.GetSubGroupStudyID(), (Records{{0, 1, 2, 3, 4, 5}}));
        pooling.IsBinary() ? run.model.BuildBinSubGroupModel() : run.model.BuildSubGroupModel();
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_TRUE(SameEntries(estimateColumns, run.model, i, whole.model, 0));
            EXPECT_TRUE(SameEntries(heterogeneityColumns, run.model, i, whole.model, 0));
        }
        EXPECT_EQ(run.model.GetUniGroup(), (Row{7, -1}));
        EXPECT_EQ(run.model.GetGroupN(), (std::vector<int>{6, 6, 6, 6}));
        EXPECT_EQ(run.model.GetWeight().size(), 18U);
        EXPECT_EQ(run.model.GetGDQbVal(), 0.0);
        EXPECT_EQ(run.model.GetGDQbSig(), 0.0);
    }
}

TEST(Subgroups, MissingValuesAndTheOverallLabelAreGroups)
{
    const MAModelSettings settings = GroupSettings();
    const BinRun run(settings, WithGroups(studies, {-1, missing, 4, notANumber, -1, 4}));
    EXPECT_EQ(run.model.GetUniGroup(), (Row{missing, -1, 4, -1}));
    EXPECT_EQ(run.model.GetSubGroupStudyID(), (Records{{1, 3}, {0, 4}, {2, 5}}));
    EXPECT_EQ(run.model.GetEstEffectSize().size(), 4U);
    EXPECT_EQ(run.model.GetLabbePlotX().size(), 2U); // not of the group that is called as the whole
}

/// What is kept by study stays in step when studies are removed after their effect sizes were computed: an
/// empty arm has no ratio, and a risk difference without variance.
TEST(Subgroups, RemovedStudiesLeaveTheGroupsTheirOwn)
{
    Rows rows = studies;
    rows.insert(rows.begin() + 1, {0, 0, 4, 90, 1, 9});
    rows.insert(rows.begin() + 4, {0, 0, 7, 90, 2, 9});
    for (const Pooling& pooling : poolings) {
        for (const int order : {-1, 5}) {
            SCOPED_TRACE(testing::Message() << pooling.name << ", order " << order);
            MAModelSettings settings = pooling.Of(GroupSettings());
            settings.SetBinZeroAdjType(ZERO_ADJUST_NONE);
            settings.SetContrastCoefIndex({5});
            settings.SetCommulativeIndex(order);
            const BinRun run(settings, rows);
            const BinRun kept(settings, studies);
            EXPECT_EQ(run.model.GetNInvalid(), 2);
            EXPECT_EQ(run.model.GetSubGroupStudyID(), (Records{{2, 6}, {0, 3, 7}, {5}}));
            for (std::size_t g = 0; g < kept.model.GetEstEffectSize().size(); ++g)
                EXPECT_TRUE(SameEntries(estimateColumns, run.model, g, kept.model, g));
            for (std::size_t g = 0; g < 4; ++g)
                EXPECT_TRUE(SameEntries(heterogeneityColumns, run.model, g, kept.model, g));
            EXPECT_EQ(run.model.GetCumEstES(), kept.model.GetCumEstES());
            EXPECT_EQ(run.model.GetEstCumulative(), kept.model.GetEstCumulative());
            EXPECT_EQ(run.model.GetWeight(), kept.model.GetWeight());
            EXPECT_EQ(run.model.GetContrastEstES(), kept.model.GetContrastEstES());
            EXPECT_EQ(run.model.GetGDQbVal(), kept.model.GetGDQbVal());
        }
    }
}

/// The first model that fails ends the analysis: of a group, of a cumulative step, or of trimmed studies.
TEST(Subgroups, FailureOfAModel)
{
    for (const char analysis : {'g', 'c', 't'}) {
        SCOPED_TRACE(analysis);
        const auto unknown = static_cast<TAU2ESTIMATOR>(7);
        MAModelSettings settings = randomEffects.Of(TableSettings());
        settings.SetSubGroupIndex(analysis == 'g' ? 4 : -1);
        settings.SetCommulativeIndex(analysis == 'c' ? 5 : -1);
        settings.SetIsTRIMFILL(analysis == 't');
        analysis == 't' ? settings.SetTFEstTauType(unknown) : settings.SetEstTauType(unknown);
        const BinRun run(settings, studies);
        EXPECT_EQ(run.status, KXStatus(MAStatusCode::TAU2_FAILED));
        EXPECT_TRUE(run.model.GetEstEffectSize().empty());
        EXPECT_TRUE(run.model.GetCumEstES().empty());
        EXPECT_EQ(run.model.GetGroupN().empty(), analysis != 't');
        EXPECT_EQ(run.model.GetUniGroup().back(), analysis == 'g' ? 3 : -1);
        EXPECT_TRUE(run.model.GetFunnelX().empty());
    }
}

/// The builds are public. Called out of order they find studies that are not complete, or no tables.
TEST(Subgroups, CallsOutOfOrder)
{
    MAModelSettings settings = GroupSettings();
    settings.SetCommulativeIndex(5);
    MABinModel early(settings);
    VectorRecordIter records(studies);
    EXPECT_TRUE(early.ESCalc(records).IsOK());
    const MAModelSettings readyMade = EffectSettings();
    BinRun run(readyMade, {{0.1, 1}, {0.2, 1}, {0.4, 2}});
    for (MABinModel* const model : {&early, &run.model}) {
        const KXStatus refused(MAStatusCode::LENGTH_MISMATCH);
        EXPECT_EQ(model->BuildBinSubGroupModel(), refused);
        EXPECT_EQ(model->BuildCumulativeModel(), refused);
        EXPECT_EQ(model->BuildBinCumulativeModel(), refused);
        EXPECT_EQ(model->ComputeLabbePlotStatistics(), refused);
    }
    EXPECT_EQ(early.BuildSubGroupModel(), KXStatus(MAStatusCode::LENGTH_MISMATCH));
    EXPECT_TRUE(run.model.BuildSubGroupModel().IsOK());
}
