#include "support/Poolings.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/platform/common/KXDistFun.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// Effect, variance, group, order. The small studies have the large effects.
const Rows studies = {{0.1, 0.02, 1, 1}, {0.15, 0.03, 2, 2}, {0.2, 0.04, 1, 3}, {0.25, 0.06, 2, 4},
                      {0.7, 0.2, 1, 5},  {0.9, 0.3, 2, 6},   {1.2, 0.4, 2, 7},  {1.5, 0.5, 1, 8}};
const Row effects = {0.1, 0.15, 0.2, 0.25, 0.7, 0.9, 1.2, 1.5};
const Row variances = {0.02, 0.03, 0.04, 0.06, 0.2, 0.3, 0.4, 0.5};

const double z90 = 1.6448536269514722;

MAModelSettings PlotSettings(FunnelYType axis = FUNNEL_STD_ERROR, int points = 5)
{
    MAModelSettings settings = EffectSettings();
    settings.SetModelType(MODEL_FIXED);
    settings.SetCILevel(0.9);
    settings.SetFunnelYType(axis);
    settings.SetFunnelNPoints(points);
    return settings;
}

/// A vertical axis of the funnel plot: the coordinate of a variance, and the standard error at a coordinate.
struct Axis
{
    FunnelYType type;
    double (*ofVariance)(double);
    double (*stdErrorAt)(double);
    bool isInverted;
};

const Axis axes[] = {
    {FUNNEL_STD_ERROR, [](double v) { return std::sqrt(v); }, [](double t) { return t; }, false},
    {FUNNEL_PRECISION, [](double v) { return 1 / std::sqrt(v); }, [](double t) { return 1 / t; }, true},
    {FUNNEL_VARIANCE, [](double v) { return v; }, [](double t) { return std::sqrt(t); }, false},
    {FUNNEL_INVERSE_VARIANCE, [](double v) { return 1 / v; }, [](double t) { return 1 / std::sqrt(t); },
     true},
};

Row Mapped(Row values, double (*map)(double))
{
    std::transform(values.begin(), values.end(), values.begin(), map);
    return values;
}

using ContRun = FinishedRun<MAContModel>;

struct Contours
{
    FunnelConTourTesType type;
    double (*quantile)(double level);
};

/// y - x is the study's effect, up to the cancellation of the two.
void ExpectLabbeRow(const BinModel& model, std::size_t row, const std::vector<std::size_t>& members)
{
    ASSERT_EQ(model.GetLabbePlotX().at(row).size(), members.size());
    ASSERT_EQ(model.GetLabbePlotW().at(row).size(), members.size());
    for (std::size_t i = 0; i < members.size(); ++i) {
        const std::size_t study = members[i];
        const double x = model.GetLabbePlotX()[row][i];
        const double y = model.GetLabbePlotY().at(row).at(i);
        EXPECT_TRUE(Close(y - x, model.GetEffectSize()[study], machineEpsilon, std::abs(x) + std::abs(y)));
        EXPECT_EQ(model.GetLabbePlotW()[row][i], model.GetWeight()[study]);
    }
}

} // namespace

TEST(Plots, FunnelAxes)
{
    for (const Axis& axis : axes) {
        SCOPED_TRACE(axis.type);
        const MAModelSettings settings = PlotSettings(axis.type);
        const ContRun run(settings, studies);
        const MAContModel& model = run.model;
        const Row y = Mapped(variances, axis.ofVariance);
        EXPECT_EQ(model.GetFunnelX(), Rows{effects});
        EXPECT_EQ(model.GetFunnelY(), Rows{y});
        const double yMax = *std::max_element(y.begin(), y.end());
        const double start = axis.isInverted ? *std::min_element(y.begin(), y.end()) : 0.0;
        EXPECT_EQ(model.GetFunnelContourY(), Row{yMax});
        EXPECT_TRUE(model.GetFunnelContourX().empty());
        ASSERT_EQ(model.GetFunnelCIX().size(), 1U);
        ASSERT_EQ(model.GetFunnelCIX()[0].size(), 5U);
        for (std::size_t k = 0; k < 5; ++k) {
            const double t = start + (yMax - start) * static_cast<double>(k) / 4;
            const double x = model.GetEstEffectSize()[0] + z90 * axis.stdErrorAt(t);
            EXPECT_TRUE(Close(model.GetFunnelCIY()[0].at(k), t, 1e-15));
            EXPECT_TRUE(Close(model.GetFunnelCIX()[0][k], x, 1e-14));
        }
    }
}

/// Without studies, the line of an inverted axis ends at 0, where it would be infinitely wide.
TEST(Plots, FunnelPointsThatAreNotThere)
{
    for (const Axis& axis : axes) {
        const MAModelSettings settings = PlotSettings(axis.type, 2);
        const ContRun none(settings, {});
        EXPECT_TRUE(none.status.IsOK());
        EXPECT_EQ(none.model.GetFunnelY(), Rows{{}});
        EXPECT_EQ(none.model.GetFunnelCIX().at(0).size(), axis.isInverted ? 1U : 2U);
        EXPECT_EQ(none.model.GetFunnelCIY().at(0).size(), axis.isInverted ? 1U : 2U);
    }
    const MAModelSettings unknown = PlotSettings(static_cast<FunnelYType>(4));
    EXPECT_EQ(ContRun(unknown, studies).model.GetFunnelY(), Rows{Row(8, 0.0)});

    for (const int points : {0, -3}) {
        const MAModelSettings settings = PlotSettings(FUNNEL_STD_ERROR, points);
        const ContRun run(settings, studies);
        EXPECT_EQ(run.model.GetFunnelCIX(), Rows{{}});
        EXPECT_EQ(run.model.GetFunnelCIY(), Rows{{}});
    }
    const MAModelSettings one = PlotSettings(FUNNEL_STD_ERROR, 1); // its step divides by zero
    EXPECT_TRUE(Same(ContRun(one, studies).model.GetFunnelCIX().at(0), {notANumber}));
}

TEST(Plots, FunnelContours)
{
    const Contours contours[] = {
        {CONTOUR_TWO_SIDED, [](double p) { return KXDistFun::IdfStdNorm(1 - p / 2); }},
        {CONTOUR_UPPER, [](double p) { return KXDistFun::IdfStdNorm(1 - p); }},
        {CONTOUR_LOWER, [](double p) { return KXDistFun::IdfStdNorm(p); }},
        {static_cast<FunnelConTourTesType>(4), [](double) { return 0.0; }},
    };
    std::vector<double> levels = {0.05, 0.5, 0, 1, 2, -0.1, 0.001};
    for (const Contours& row : contours) {
        SCOPED_TRACE(row.type);
        MAModelSettings settings = PlotSettings();
        settings.SetSubGroupIndex(2);
        settings.SetFunnelConTourTesType(row.type);
        settings.SetFunnelConTourCutoff(levels);
        const ContRun run(settings, studies);
        const Row yMax = {std::sqrt(0.5), std::sqrt(0.5), std::sqrt(0.4)};
        EXPECT_EQ(run.model.GetFunnelContourY(), yMax);
        ASSERT_EQ(run.model.GetFunnelContourX().size(), 3U);
        for (std::size_t plot = 0; plot < 3; ++plot) {
            Row extents = Mapped(levels, row.quantile);
            for (double& extent : extents)
                extent *= yMax[plot];
            EXPECT_TRUE(Same(run.model.GetFunnelContourX()[plot], extents)) << "plot " << plot;
        }
    }
}

/// All studies, then the groups, about their own estimates; Galbraith's plot of a group is scaled by
/// variances.
TEST(Plots, RowsOfGroups)
{
    const Rows groupEffects = {effects, {0.1, 0.2, 0.7, 1.5}, {0.15, 0.25, 0.9, 1.2}};
    const Rows groupVariances = {variances, {0.02, 0.04, 0.2, 0.5}, {0.03, 0.06, 0.3, 0.4}};
    for (const bool isCumulative : {false, true}) {
        MAModelSettings settings = PlotSettings();
        settings.SetSubGroupIndex(2);
        settings.SetCommulativeIndex(isCumulative ? 3 : -1);
        const ContRun run(settings, studies);
        const MAContModel& model = run.model;
        EXPECT_EQ(model.GetFunnelX(), groupEffects);
        ASSERT_EQ(model.GetFunnelCIX().size(), 3U);
        ASSERT_EQ(model.GetGalbPlotX().size(), 3U);
        for (std::size_t plot = 0; plot < 3; ++plot) {
            SCOPED_TRACE(testing::Message() << "plot " << plot << (isCumulative ? ", cumulative" : ""));
            double weightSum = 0.0;
            double weighted = 0.0;
            double xx = 0.0;
            double xy = 0.0;
            for (std::size_t i = 0; i < groupEffects[plot].size(); ++i) {
                const double variance = groupVariances[plot][i];
                const double scale = plot == 0 ? std::sqrt(variance) : variance;
                weightSum += 1 / variance;
                weighted += groupEffects[plot][i] / variance;
                xx += 1 / (scale * scale);
                xy += groupEffects[plot][i] / (scale * scale);
                EXPECT_EQ(model.GetFunnelY().at(plot).at(i), std::sqrt(variance));
                EXPECT_EQ(model.GetGalbPlotX()[plot].at(i), 1 / scale);
                EXPECT_EQ(model.GetGalbPlotY().at(plot).at(i), groupEffects[plot][i] / scale);
            }
            EXPECT_TRUE(Close(model.GetFunnelCIX()[plot].at(0), weighted / weightSum, 1e-15)); // the centre
            EXPECT_TRUE(Close(model.GetGalbRegrSlope().at(plot), xy / xx, 1e-15));
            EXPECT_TRUE(Close(model.GetGalbRegrIntercept().at(plot), z90, 1e-15));
        }
    }
}

/// The imputed studies are the last row, empty when there are none, without a line and a contour; the line of
/// all studies is about the filled estimate.
TEST(Plots, ImputedStudiesInTheFunnel)
{
    for (const TRIMFSIDE side : {TRIM_SIDE_LARGEST, TRIM_SIDE_SMALLEST}) {
        for (const int group : {-1, 2}) {
            MAModelSettings settings = PlotSettings(FUNNEL_VARIANCE);
            settings.SetIsTRIMFILL(true);
            settings.SetTFModelType(MODEL_FIXED);
            settings.SetTrimFillSide(side);
            settings.SetSubGroupIndex(group);
            const ContRun run(settings, studies);
            const MAContModel& model = run.model;
            const std::size_t plots = group == -1 ? 1 : 3;
            ASSERT_EQ(model.GetFunnelX().size(), plots + 1);
            ASSERT_EQ(model.GetFunnelY().size(), plots + 1);
            EXPECT_EQ(model.GetTFImputedN0() > 0, side == TRIM_SIDE_LARGEST);
            EXPECT_EQ(model.GetFunnelX()[plots], model.GetTFImputedEffectSize());
            EXPECT_EQ(Mapped(model.GetFunnelY()[plots], [](double v) { return std::sqrt(v); }),
                      model.GetTFImputedStdError());
            EXPECT_EQ(model.GetFunnelContourY().size(), plots);
            ASSERT_EQ(model.GetFunnelCIX().size(), plots);
            EXPECT_EQ(model.GetFunnelCIX()[0].at(0), model.GetOverallTFEffectSize());
        }
    }
}

TEST(Plots, LabbeOfTables)
{
    const Rows tables = {{12, 88, 20, 80, 2}, {0, 85, 25, 75, 1}, {9, 91, 8, 92, 2}, {40, 60, 9, 91, 1}};
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings settings = pooling.Of(TableSettings());
        MAModelSettings grouped = settings;
        grouped.SetSubGroupIndex(4);
        const BinRun run(settings, tables);
        const BinRun groups(grouped, tables);
        if (pooling.effect == BIN_PETO_ODDS_RATIO) {
            EXPECT_TRUE(run.status.IsOK());
            EXPECT_TRUE(run.model.GetLabbePlotX().empty());
            continue;
        }
        ASSERT_EQ(run.model.GetLabbePlotX().size(), 1U);
        ASSERT_EQ(groups.model.GetLabbePlotX().size(), 2U);
        ExpectLabbeRow(run.model, 0, {0, 1, 2, 3});
        ExpectLabbeRow(groups.model, 0, {1, 3});
        ExpectLabbeRow(groups.model, 1, {0, 2});
    }
}

/// None where effects were not computed from tables, or not of all studies, or where there are no studies.
TEST(Plots, NoLabbe)
{
    MAModelSettings readyMade = EffectSettings();
    readyMade.SetOutcomesType(OUTCOME_BINARY);
    EXPECT_TRUE(BinRun(readyMade, studies).model.GetLabbePlotX().empty());
    MAModelSettings settings = TableSettings();
    EXPECT_TRUE(BinRun(settings, {}).model.GetLabbePlotX().empty());
    settings.SetBinZeroAdjType(ZERO_ADJUST_NONE);
    const Rows removed = {{1, 9, 2, 8}, {0, 9, 2, 8}, {3, 7, 1, 9}};
    const BinRun run(settings, removed);
    EXPECT_TRUE(run.status.IsOK());
    EXPECT_TRUE(run.model.GetLabbePlotX().empty());
    settings.SetBinZeroAdjType(ZERO_ADJUST_EACH);
    EXPECT_EQ(BinRun(settings, removed).model.GetLabbePlotX().size(), 1U);
}
