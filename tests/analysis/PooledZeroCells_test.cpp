#include "support/PooledFigures.h"
#include "support/Poolings.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

using Counts = std::vector<int>;

const Rows sparse = {{0, 100, 4, 96}, {1, 99, 5, 95}, {2, 198, 6, 194}};

MAModelSettings Pooled(BINESTYPE effect, POOLEDZEROCELLS rule, MAModelSettings settings = TableSettings())
{
    settings.SetBinaryEstType(effect);
    settings.SetModelType(MODEL_FIXED);
    settings.SetWeightType(WEIGHT_BINARY_FIXED);
    settings.SetPooledZeroCells(rule);
    return settings;
}

} // namespace

/// The odds ratio from its sums by hand; standard error and Q from an independent package.
TEST(PooledZeroCells, SparseTablesArePooledAsRead)
{
    const BinRun run(Pooled(BIN_ODDS_RATIO, POOLED_ZERO_CELLS_IF_NEEDED), sparse);
    EXPECT_TRUE(Close(run.model.GetEstExpEffectSize(), {1.445 / 7.445}, 1e-15));
    EXPECT_TRUE(Close(run.model.GetWeight(), {2, 2.475, 2.97}, 1e-15));
    EXPECT_TRUE(Close(run.model.GetEstStdError(), {0.6364038478}, 1e-10));
    EXPECT_TRUE(Close(run.model.GetHomoTestChisquareQ(), {0.5599027486}, 1e-9));
    EXPECT_EQ(run.model.GetHomoTestdf(), (Row{2}));
    EXPECT_EQ(run.model.GetNZeroCorrected(), 1);
    EXPECT_EQ(run.model.GetNPoolCorrected(), (Counts{0}));
}

TEST(PooledZeroCells, UncorrectedPoolingMeetsTheReferenceFigures)
{
    const char* const keys[] = {"OR", "", "RR", "RD"};
    for (const char* const name : {"bcg_vaccine", "magnesium", "beta_blockers"}) {
        const DataSet data(name);
        const nlohmann::json reference = LoadReference(name + std::string("_mantel_haenszel_uncorrected"));
        for (const BINESTYPE effect : {BIN_ODDS_RATIO, BIN_RISK_RATIO, BIN_RISK_DIFFERENCE}) {
            SCOPED_TRACE(name + std::string(" ") + keys[effect]);
            const nlohmann::json& figures = reference.at(keys[effect]);
            const MAModelSettings tables = TableSettings(data.IndexOf("treatment_events"));
            const BinRun run(Pooled(effect, POOLED_ZERO_CELLS_NONE, tables), data.rows);
            EXPECT_TRUE(Close(run.model.GetEstEffectSize(), {figures.at("estimate")}, closedFormTolerance));
            if (effect == BIN_RISK_DIFFERENCE)
                continue; // whose variance there is another formula
            ExpectEstimate(run.model, figures.at("estimate"), figures.at("se"), figures.at("z"),
                           figures.at("p"), figures.at("ci_lower"), figures.at("ci_upper"),
                           closedFormTolerance);
            EXPECT_TRUE(Close(run.model.GetHomoTestChisquareQ(), {figures.at("Q")}, closedFormTolerance));
            EXPECT_EQ(run.model.GetHomoTestdf(), (Row{figures.at("Q_df")}));
        }
    }
}

/// Corrected, such a table would tell the ratio of its group sizes. Without one that tells anything there is
/// no ratio, corrected or not; a risk difference has one.
TEST(PooledZeroCells, TablesWithoutEventsHaveNoPartInRatios)
{
    const Row withoutEvents = {0, 50, 0, 150};
    Rows more = sparse;
    more.push_back(withoutEvents);
    for (const POOLEDZEROCELLS rule : {POOLED_ZERO_CELLS_IF_NEEDED, POOLED_ZERO_CELLS_NONE}) {
        for (const BINESTYPE effect : {BIN_ODDS_RATIO, BIN_PETO_ODDS_RATIO, BIN_RISK_RATIO}) {
            SCOPED_TRACE(testing::Message() << "effect " << effect << ", rule " << rule);
            const MAModelSettings settings = Pooled(effect, rule);
            const BinRun with(settings, more);
            EXPECT_TRUE(SameModel(with.model, 0, BinRun(settings, sparse).model));
            EXPECT_EQ(with.model.GetWeight().back(), 0.0);
            const BinRun nothing(settings, {withoutEvents, withoutEvents});
            EXPECT_TRUE(Same(nothing.model.GetEstExpEffectSize(), {notANumber}));
        }
        const BinRun differences(Pooled(BIN_RISK_DIFFERENCE, rule), more);
        EXPECT_EQ(differences.model.GetWeight().back(), 37.5);
        EXPECT_EQ(differences.model.GetHomoTestdf(), (Row{3}));
    }
}

/// In group 1 no one treated has an event, so that its ratios need the correction, and those of the others
/// and of all do not. That each model is that of a run of its own is tested with the other analyses.
TEST(PooledZeroCells, EachModelIsCorrectedIfItNeedsToBe)
{
    const Rows rows = {
        {0, 100, 4, 96, 1, 1}, {3, 99, 0, 95, 2, 2}, {0, 198, 6, 194, 1, 1}, {2, 50, 3, 40, 2, 3}};
    MAModelSettings columns = TableSettings();
    columns.SetSubGroupIndex(4);
    for (const BINESTYPE effect : {BIN_ODDS_RATIO, BIN_RISK_RATIO}) {
        const BinRun groups(Pooled(effect, POOLED_ZERO_CELLS_IF_NEEDED, columns), rows);
        const BinRun asStudies(Pooled(effect, POOLED_ZERO_CELLS_AS_STUDIES, columns), rows);
        const BinRun asRead(Pooled(effect, POOLED_ZERO_CELLS_NONE, columns), rows);
        EXPECT_EQ(groups.model.GetNPoolCorrected(), (Counts{2, 0, 0}));
        EXPECT_EQ(asStudies.model.GetNPoolCorrected(), (Counts{2, 1, 3}));
        EXPECT_TRUE(SameModel(groups.model, 0, asStudies.model, 0));
        for (const std::size_t model : {1U, 2U})
            EXPECT_TRUE(SameModel(groups.model, model, asRead.model, model));
        EXPECT_TRUE(std::isnan(asRead.model.GetEstExpEffectSize().at(0)));
    }
    columns.SetSubGroupIndex(-1);
    columns.SetCommulativeIndex(5);
    const BinRun steps(Pooled(BIN_ODDS_RATIO, POOLED_ZERO_CELLS_IF_NEEDED, columns), rows);
    EXPECT_EQ(steps.model.GetCumNPoolCorrected(), (std::vector<Counts>{{1, 2, 0, 0}}));
}
