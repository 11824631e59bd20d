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

/// What the models without a study have, in the order of the figures; and the same of the model of all.
const Columns withoutEach = {
    &BinModel::GetLeaveOneOutEffectSize, &BinModel::GetLeaveOneOutStdError, &BinModel::GetLeaveOneOutZVal,
    &BinModel::GetLeaveOneOutSig,        &BinModel::GetLeaveOneOutCILower,  &BinModel::GetLeaveOneOutCIUpper,
    &BinModel::GetLeaveOneOutChisquareQ, &BinModel::GetLeaveOneOutTau2Var,  &BinModel::GetLeaveOneOutI2Index};
const Columns ofAll = {&BinModel::GetEstEffectSize,
                       &BinModel::GetEstStdError,
                       &BinModel::GetEstZVal,
                       &BinModel::GetEstSig,
                       &BinModel::GetEstCILower,
                       &BinModel::GetEstCIUpper,
                       &BinModel::GetHomoTestChisquareQ,
                       &BinModel::GetTau2Var,
                       &BinModel::GetI2Index};

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
            EXPECT_TRUE(Same(EntriesOf(run.model, i, withoutEach), EntriesOf(without.model, 0, ofAll))) << i;
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
        EXPECT_THAT(EntriesOf(run.model, study, withoutEach),
                    testing::Pointwise(testing::DoubleNear(2e-9), row))
            << study;
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
