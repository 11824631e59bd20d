// Studies without a value that one step alone needs.

#include "support/Compare.h"
#include "support/FinishedRun.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;

namespace {

using EffectRun = FinishedRun<MAContModel>;

constexpr double none = KXMV::Missing();

/// Effect, variance, group, order, contrast coefficient. The first record is no study.
const Rows rows = {{none, 0.1, 1, 3, 1}, {0.3, 0.10, 2, 4, 1},    {0.5, 0.02, none, 1, 1},
                   {0.1, 0.05, 1, 5, 1}, {0.9, 0.04, 1, none, 1}, {0.2, 0.03, 2, 2, none},
                   {0.7, 0.01, 1, 0, -1}};

struct Omission
{
    int group;
    int order;
    std::vector<int> withoutGroup;
    std::vector<int> withoutOrder;
};

MAModelSettings SettingsBy(const Omission& one)
{
    MAModelSettings settings = EffectSettings();
    settings.SetSubGroupIndex(one.group);
    settings.SetCommulativeIndex(one.order);
    settings.SetOmitMissingSubgroup(true);
    settings.SetOmitMissingCumulative(true);
    return settings;
}

/// The rows that are in the groups and steps.
Rows Placed(const Omission& one)
{
    Rows placed = rows;
    for (const std::vector<int>& records : {one.withoutGroup, one.withoutOrder})
        for (const int record : records)
            placed[static_cast<std::size_t>(record)][0] = none;
    return placed;
}

/// Groups and steps are those of a run without the studies, and the last row is that of a run of all.
TEST(MissingValues, LeaveTheStepAndStayInTheModelOfAll)
{
    const Omission cases[] = {{2, -1, {2}, {}}, {-1, 3, {}, {4}}, {2, 3, {2}, {4}}};
    for (const Omission& one : cases) {
        SCOPED_TRACE(testing::Message() << one.group << ", " << one.order);
        const MAModelSettings settings = SettingsBy(one);
        const EffectRun run(settings, rows);
        const EffectRun placed(settings, Placed(one));
        const EffectRun all(EffectSettings(), rows);
        EXPECT_EQ(run.model.GetSubgroupMissing(), one.withoutGroup);
        EXPECT_EQ(run.model.GetCumulativeMissing(), one.withoutOrder);
        EXPECT_EQ(run.Warns(MAStatusCode::SUBGROUP_VALUE_MISSING), !one.withoutGroup.empty());
        EXPECT_EQ(run.Warns(MAStatusCode::CUMULATIVE_VALUE_MISSING), !one.withoutOrder.empty());
        EXPECT_EQ(run.model.GetSubGroupStudyID(), placed.model.GetSubGroupStudyID());
        EXPECT_EQ(run.model.GetGDQbVal(), placed.model.GetGDQbVal());
        EXPECT_TRUE(Same(run.model.GetWeight(), all.model.GetWeight()));
        const std::size_t groups = run.model.GetSubGroupStudyID().size();
        ASSERT_EQ(run.model.GetTau2Var().size(), groups + 1);
        for (std::size_t g = 0; g < groups; ++g)
            EXPECT_EQ(run.model.GetTau2Var()[g], placed.model.GetTau2Var()[g]);
        EXPECT_EQ(run.model.GetTau2Var().back(), all.model.GetTau2Var().back());
        EXPECT_EQ(run.model.GetEstEffectSize().back(), all.model.GetEstEffectSize().back());
        for (std::size_t g = 0; one.order != -1 && g < groups; ++g)
            EXPECT_EQ(run.model.GetCumEstES()[g], placed.model.GetCumEstES()[g]);
    }
}

TEST(MissingValues, OneGroupThatIsLeftIsNoAnalysis)
{
    Rows single = rows;
    for (Row& row : single)
        row[2] = row[2] == 2 ? none : row[2];
    const EffectRun run(SettingsBy({2, -1, {}, {}}), single);
    EXPECT_EQ(run.model.GetUniGroup(), std::vector<double>{-1});
    EXPECT_EQ(run.model.GetSubgroupMissing(), (std::vector<int>{1, 2, 5}));
    EXPECT_EQ(run.model.GetEstEffectSize(), EffectRun(EffectSettings(), rows).model.GetEstEffectSize());
}

TEST(MissingValues, AreNamedByContrasts)
{
    MAModelSettings settings = EffectSettings();
    settings.SetModelType(MAConst::MODEL_FIXED);
    settings.SetContrastCoefIndex({4, 3});
    EXPECT_EQ(EffectRun(settings, rows).model.GetContrastMissing(),
              (std::vector<std::vector<int>>{{5}, {4}}));
}

} // namespace
