#include "support/Poolings.h"
#include "support/Published.h"
#include "support/Tables.h"

#include "meta_analysis/pooling/MATablePooling.h"

#include <gmock/gmock.h>

#include <map>
#include <random>

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

/// To the bit for the 13 studies; 20 copies of them share sums.
TEST(LeaveOneOut, EqualsTheRunWithoutTheStudy)
{
    const Published bcg("bcg_vaccine");
    for (const Pooling& pooling : poolings)
        for (const std::size_t copies : {1, 20}) {
            SCOPED_TRACE(pooling.name);
            const MAModelSettings settings = pooling.Of(bcg.settings);
            Rows rows;
            for (std::size_t copy = 0; copy < copies; ++copy)
                rows.insert(rows.end(), bcg.data.rows.begin(), bcg.data.rows.end());
            const BinRun run(WithLeaveOneOut(settings), rows);
            ASSERT_EQ(run.model.GetLeaveOneOutEffectSize().size(), rows.size());
            for (std::size_t i = 0; i < bcg.data.rows.size(); ++i) {
                Rows others = rows;
                others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
                const BinRun without(settings, others);
                EXPECT_TRUE(Close(EntriesOf(run.model, i, withoutEach), EntriesOf(without.model, 0, ofAll),
                                  copies == 1 ? 0.0 : 1e-12))
                    << i;
            }
            EXPECT_EQ(run.model.GetLeaveOneOutExpCIUpper().empty(), pooling.effect == BIN_RISK_DIFFERENCE);
        }
}

/// Small counts with many zero cells, some of which are all that others do not have, and a table that
/// outweighs all. Their differences of risks are compared with their standard error at least.
TEST(LeaveOneOut, OfCountsEqualsThePoolingOfTheOthers)
{
    std::mt19937 generator(1);
    for (unsigned round = 0; round < 200; ++round) {
        std::vector<MATable> tables(3 + round % 20);
        for (MATable& table : tables) {
            const auto count = [&] { return static_cast<double>(generator() % (2 + round % 7)); };
            table = {round % 3 == 0 ? 0.0 : count(), count(), round % 3 == 0 ? 0.0 : count(), count()};
        }
        tables[1] = round % 2 == 0 ? MATable{2e6, 3e6, 1e6, 4e6} : MATable{1, 2, 3, 4};
        MATablePoolingChoice choice;
        choice.measure = poolings[2 + round % 4].effect;
        choice.pooledZeroCells = std::array{POOLED_ZERO_CELLS_AS_STUDIES, POOLED_ZERO_CELLS_IF_NEEDED,
                                            POOLED_ZERO_CELLS_NONE}[round / 4 % 3];
        choice.correction.type = round % 5 == 0 ? ZERO_ADJUST_NONE : ZERO_ADJUST_EACH;
        const std::vector<MAPooledModel> models = PoolTablesWithoutEach(tables, choice);
        for (std::size_t i = 0; i < tables.size(); ++i) {
            SCOPED_TRACE(std::to_string(round) + " without " + std::to_string(i));
            std::vector<MATable> others = tables;
            others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
            const MAPooledModel plain = PoolTables(others, choice).model;
            EXPECT_TRUE(Close(models[i].effect.estimate, plain.effect.estimate, 1e-12, 0.1));
            EXPECT_TRUE(Close(models[i].effect.variance, plain.effect.variance, 1e-12));
            EXPECT_TRUE(Close(models[i].effect.pValue.value, plain.effect.pValue.value, 1e-12, 1.0));
            // A table that outweighs all has hardly a digit of its distance from the pooled effect.
            EXPECT_TRUE(Close(models[i].homogeneity.q, plain.homogeneity.q, i == 1 ? 1e-12 : 1e-9));
            EXPECT_EQ(models[i].homogeneity.df, plain.homogeneity.df);
        }
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
