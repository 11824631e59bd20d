// Funnel and Galbraith plots, which a run makes together.

#include "support/Compare.h"
#include "support/FinishedRun.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/platform/common/KXDistFun.h"

#include <numeric>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// Effect, variance, group, order. The small studies have the large effects.
const Rows studies = {{0.1, 0.02, 1, 1}, {0.15, 0.03, 2, 2}, {0.2, 0.04, 1, 3}, {0.25, 0.06, 2, 4},
                      {0.7, 0.2, 1, 5},  {0.9, 0.3, 2, 6},   {1.2, 0.4, 2, 7},  {1.5, 0.5, 1, 8}};

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

/// Of all studies, or of group 1 or 2.
Rows StudiesOfPlot(std::size_t plot)
{
    Rows rows = studies;
    std::erase_if(rows, [plot](const Row& row) { return plot > 0 && row[2] != static_cast<double>(plot); });
    return rows;
}

using ContRun = FinishedRun<MAContModel>;

} // namespace

TEST(FunnelPlot, HasTheStudiesOnItsAxis)
{
    for (const Axis& axis : axes) {
        SCOPED_TRACE(axis.type);
        const MAModelSettings settings = PlotSettings(axis.type);
        const ContRun run(settings, studies);
        const Row y = Mapped(ColumnOf(studies, 1), axis.ofVariance);
        EXPECT_EQ(run.model.GetFunnelX(), Rows{ColumnOf(studies, 0)});
        EXPECT_EQ(run.model.GetFunnelY(), Rows{y});
        const double yMax = *std::max_element(y.begin(), y.end());
        const double start = axis.isInverted ? *std::min_element(y.begin(), y.end()) : 0.0;
        EXPECT_EQ(run.model.GetFunnelContourY(), Row{yMax});
        EXPECT_TRUE(run.model.GetFunnelContourX().empty());
        Row lineX;
        Row lineY;
        for (const double share : {0.0, 0.25, 0.5, 0.75, 1.0}) {
            lineY.push_back(start + (yMax - start) * share);
            lineX.push_back(run.model.GetEstEffectSize()[0] + z90 * axis.stdErrorAt(lineY.back()));
        }
        EXPECT_TRUE(Close(run.model.GetFunnelCIY().at(0), lineY, 1e-15));
        EXPECT_TRUE(Close(run.model.GetFunnelCIX().at(0), lineX, 1e-14));

        // Without studies, the line of an inverted axis ends at 0, where it would be infinitely wide.
        const ContRun none(settings, {});
        EXPECT_TRUE(none.status.IsOK());
        EXPECT_EQ(none.model.GetFunnelY(), Rows{{}});
        EXPECT_EQ(none.model.GetFunnelCIX().at(0).size(), axis.isInverted ? 4U : 5U);
    }
    EXPECT_EQ(ContRun(PlotSettings(static_cast<FunnelYType>(4)), studies).model.GetFunnelY(),
              Rows{Row(8, 0.0)});
}

TEST(FunnelPlot, HasLinesOfAnyNumberOfPoints)
{
    const std::pair<int, Row> lines[] = {{-3, {}}, {0, {}}, {1, {notANumber}}}; // the step divides by zero
    for (const auto& [points, x] : lines)
        EXPECT_TRUE(
            Same(ContRun(PlotSettings(FUNNEL_STD_ERROR, points), studies).model.GetFunnelCIX()[0], x));
}

TEST(FunnelPlot, HasContoursOfItsLargestStandardError)
{
    const std::pair<int, double (*)(double)> contours[] = {
        {CONTOUR_TWO_SIDED, [](double p) { return KXDistFun::IdfStdNorm(1 - p / 2); }},
        {CONTOUR_UPPER, [](double p) { return KXDistFun::IdfStdNorm(1 - p); }},
        {CONTOUR_LOWER, [](double p) { return KXDistFun::IdfStdNorm(p); }},
        {4, [](double) { return 0.0; }},
    };
    std::vector<double> levels = {0.05, 0.5, 0, 1, 2, -0.1, 0.001};
    const Row yMax = {std::sqrt(0.5), std::sqrt(0.5), std::sqrt(0.4)};
    for (const auto& [type, quantile] : contours) {
        MAModelSettings settings = PlotSettings();
        settings.SetSubGroupIndex(2);
        settings.SetFunnelConTourTesType(static_cast<FunnelConTourTesType>(type));
        settings.SetFunnelConTourCutoff(levels);
        const ContRun run(settings, studies);
        EXPECT_EQ(run.model.GetFunnelContourY(), yMax);
        for (std::size_t plot = 0; plot < 3; ++plot) {
            Row extents = Mapped(levels, quantile);
            for (double& extent : extents)
                extent *= yMax[plot];
            EXPECT_TRUE(Same(run.model.GetFunnelContourX().at(plot), extents)) << type << ", plot " << plot;
        }
    }
}

/// All studies, then the groups, whose rows are those of runs of their own.
TEST(FunnelPlot, HasRowsOfGroups)
{
    for (const int order : {-1, 3}) {
        MAModelSettings settings = PlotSettings();
        settings.SetSubGroupIndex(2);
        settings.SetCommulativeIndex(order);
        const ContRun run(settings, studies);
        ASSERT_EQ(run.model.GetFunnelX().size(), 3U);
        for (std::size_t plot = 0; plot < 3; ++plot) {
            SCOPED_TRACE(testing::Message() << "plot " << plot << ", order " << order);
            const ContRun own(PlotSettings(), StudiesOfPlot(plot));
            EXPECT_EQ(run.model.GetFunnelX()[plot], own.model.GetFunnelX()[0]);
            EXPECT_EQ(run.model.GetFunnelY().at(plot), own.model.GetFunnelY()[0]);
            EXPECT_TRUE(Close(run.model.GetFunnelCIX().at(plot), own.model.GetFunnelCIX()[0], 1e-15));
        }
    }
}

/// All studies are scaled by standard errors, those of groups by variances.
TEST(GalbraithPlot, HasTheLineThroughTheOrigin)
{
    MAModelSettings settings = PlotSettings();
    settings.SetSubGroupIndex(2);
    const ContRun run(settings, studies);
    ASSERT_EQ(run.model.GetGalbPlotX().size(), 3U);
    for (std::size_t plot = 0; plot < 3; ++plot) {
        SCOPED_TRACE(plot);
        Row x;
        Row y;
        for (const Row& row : StudiesOfPlot(plot)) {
            x.push_back(1 / (plot == 0 ? std::sqrt(row[1]) : row[1]));
            y.push_back(row[0] * x.back());
        }
        EXPECT_TRUE(Close(run.model.GetGalbPlotX()[plot], x, machineEpsilon));
        EXPECT_TRUE(Close(run.model.GetGalbPlotY().at(plot), y, 2 * machineEpsilon));
        const double xy = std::inner_product(x.begin(), x.end(), y.begin(), 0.0);
        const double xx = std::inner_product(x.begin(), x.end(), x.begin(), 0.0);
        EXPECT_TRUE(Close(run.model.GetGalbRegrSlope().at(plot), xy / xx, 1e-15));
        EXPECT_TRUE(Close(run.model.GetGalbRegrIntercept().at(plot), z90, 1e-15));
    }
}
