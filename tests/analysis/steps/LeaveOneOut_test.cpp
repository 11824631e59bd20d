#include "support/Poolings.h"
#include "support/Published.h"
#include "support/Tables.h"

#include <gmock/gmock.h>

#include <map>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

MAModelSettings WithLeaveOneOut(MAModelSettings settings)
{
    settings.SetLeaveOneOut(true);
    return settings;
}

/// What the model without study i has, in the order of the figures.
Row Entry(const BinModel& model, std::size_t i)
{
    return {model.GetLeaveOneOutEffectSize().at(i), model.GetLeaveOneOutStdError().at(i),
            model.GetLeaveOneOutZVal().at(i),       model.GetLeaveOneOutSig().at(i),
            model.GetLeaveOneOutCILower().at(i),    model.GetLeaveOneOutCIUpper().at(i),
            model.GetLeaveOneOutChisquareQ().at(i), model.GetLeaveOneOutTau2Var().at(i),
            model.GetLeaveOneOutI2Index().at(i)};
}

Row OverallOf(const BinModel& model)
{
    return {model.GetEstEffectSize().back(),
            model.GetEstStdError().back(),
            model.GetEstZVal().back(),
            model.GetEstSig().back(),
            model.GetEstCILower().back(),
            model.GetEstCIUpper().back(),
            model.GetHomoTestChisquareQ().back(),
            model.GetTau2Var().back(),
            model.GetI2Index().back()};
}

} // namespace

TEST(LeaveOneOut, EqualsTheRunWithoutTheStudy)
{
    const Published bcg("bcg_vaccine");
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings settings = pooling.Of(bcg.settings);
        const BinRun run(WithLeaveOneOut(settings), bcg.data.rows);
        ASSERT_EQ(run.model.GetLeaveOneOutEffectSize().size(), bcg.data.rows.size());
        for (std::size_t i = 0; i < bcg.data.rows.size(); ++i) {
            Rows others = bcg.data.rows;
            others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
            const BinRun without(settings, others);
            EXPECT_TRUE(Same(Entry(run.model, i), OverallOf(without.model))) << i;
        }
        EXPECT_EQ(run.model.GetLeaveOneOutExpCIUpper().empty(), pooling.effect == BIN_RISK_DIFFERENCE);
    }
}

/// Figures of R's metafor 3.8-1, leave1out of rma(method = "REML") on the log risk ratios.
TEST(LeaveOneOut, MeetsIndependentFigures)
{
    Published bcg("bcg_vaccine");
    bcg.settings.SetBinaryEstType(BIN_RISK_RATIO);
    bcg.settings.SetTau2Search(TAU2_SEARCH_GLOBAL);
    const BinRun run(WithLeaveOneOut(bcg.settings), bcg.data.rows);
    const std::map<std::size_t, Row> figures = {
        {0,
         {-0.7070837847, 0.1899610145, -3.7222573613, 0.0001974496, -1.0794005316, -0.3347670378,
          151.5825727471, 0.3361567018, 0.932259340940}},
        {3,
         {-0.6284093698, 0.1766188918, -3.5579963358, 0.0003736945, -0.9745760367, -0.2822427029,
          96.5625949714, 0.2627581481, 0.904124639335}}};
    for (const auto& [study, row] : figures)
        EXPECT_THAT(Entry(run.model, study), testing::Pointwise(testing::DoubleNear(2e-9), row)) << study;
}

/// One study leaves nothing to leave out, and a run that is not asked for it has none.
TEST(LeaveOneOut, NeedsTwoStudiesAndTheSetting)
{
    const Published bcg("bcg_vaccine");
    const BinRun notAsked(bcg.settings, bcg.data.rows);
    const BinRun single(WithLeaveOneOut(bcg.settings), {bcg.data.rows[0]});
    const BinRun pair(WithLeaveOneOut(bcg.settings), {bcg.data.rows[0], bcg.data.rows[1]});
    EXPECT_TRUE(notAsked.model.GetLeaveOneOutEffectSize().empty());
    EXPECT_TRUE(single.model.GetLeaveOneOutEffectSize().empty());
    EXPECT_EQ(pair.model.GetLeaveOneOutEffectSize(),
              (Row{pair.model.GetEffectSize()[1], pair.model.GetEffectSize()[0]}));
}
