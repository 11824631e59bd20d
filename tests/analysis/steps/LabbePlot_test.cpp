#include "support/Poolings.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

/// Of all studies, or of each group. y - x is the study's effect, up to the cancellation of the two.
TEST(LabbePlot, IsOfTablesWithoutPeto)
{
    const Rows tables = {{12, 88, 20, 80, 1}, {0, 85, 25, 75, 1}, {9, 91, 8, 92, 2}, {40, 60, 9, 91, 2}};
    const auto halves = [](const Row& row) { return Rows{{row[0], row[1]}, {row[2], row[3]}}; };
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        MAModelSettings settings = pooling.Of(TableSettings());
        const BinRun run(settings, tables);
        settings.SetSubGroupIndex(4);
        const BinRun groups(settings, tables);
        if (pooling.effect == BIN_PETO_ODDS_RATIO) {
            EXPECT_TRUE(run.model.GetLabbePlotX().empty());
            continue;
        }
        ASSERT_EQ(run.model.GetLabbePlotX().size(), 1U);
        const Row x = run.model.GetLabbePlotX()[0];
        const Row y = run.model.GetLabbePlotY().at(0);
        const Row weights = run.model.GetWeight();
        for (std::size_t i = 0; i < 4; ++i) {
            const double scale = std::abs(x.at(i)) + std::abs(y.at(i));
            EXPECT_TRUE(Close(y[i] - x[i], run.model.GetEffectSize()[i], machineEpsilon, scale));
        }
        EXPECT_EQ(run.model.GetLabbePlotW(), Rows{weights});
        EXPECT_EQ(groups.model.GetLabbePlotX(), halves(x));
        EXPECT_EQ(groups.model.GetLabbePlotY(), halves(y));
        EXPECT_EQ(groups.model.GetLabbePlotW(), halves(weights));
    }
}
