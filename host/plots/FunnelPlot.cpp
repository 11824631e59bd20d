#include "host/draw/CutToRectangle.h"
#include "host/plots/PictureMakers.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXDistFun.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The shade of region `number` of `count`, from the most significant one on to the last, which is white.
std::string Shade(std::size_t number, std::size_t count)
{
    constexpr double DARKEST = 0xC4;
    constexpr double WHITE = 0xFF;
    const double share = static_cast<double>(number) / static_cast<double>(count - 1);
    const int grey = static_cast<int>(std::lround(DARKEST + share * (WHITE - DARKEST)));
    return fmt::format("#{0:02x}{0:02x}{0:02x}", grey);
}

std::string WordingOf(MAConst::FunnelConTourTesType test)
{
    switch (test) {
    case MAConst::CONTOUR_UPPER:
        return "upper-tailed";
    case MAConst::CONTOUR_LOWER:
        return "lower-tailed";
    case MAConst::CONTOUR_TWO_SIDED:
        return "two-sided";
    case MAConst::CONTOUR_NONE:
        break;
    }
    return {};
}

std::string RangeOfP(double from, double to)
{
    if (from == 0)
        return fmt::format("p < {:g}", to);
    return to == 1 ? fmt::format("p > {:g}", from) : fmt::format("{:g} < p < {:g}", from, to);
}

std::string VerticalTitle(MAConst::FunnelYType type)
{
    switch (type) {
    case MAConst::FUNNEL_STD_ERROR:
        return "standard error";
    case MAConst::FUNNEL_PRECISION:
        return "1 / standard error";
    case MAConst::FUNNEL_VARIANCE:
        return "variance";
    case MAConst::FUNNEL_INVERSE_VARIANCE:
        return "1 / variance";
    }
    return {};
}

/// The standard error that belongs to a vertical coordinate.
double StdErrorAt(MAConst::FunnelYType type, double vertical)
{
    switch (type) {
    case MAConst::FUNNEL_STD_ERROR:
        return vertical;
    case MAConst::FUNNEL_PRECISION:
        return 1 / vertical;
    case MAConst::FUNNEL_VARIANCE:
        return std::sqrt(vertical);
    case MAConst::FUNNEL_INVERSE_VARIANCE:
        return 1 / std::sqrt(vertical);
    }
    return vertical;
}

/// Makes one funnel plot.
class Funnel
{
public:
    Funnel(const AnalysisData& data, const PlotOfGroup& plot);

    Picture Draw() const;

private:
    using Rows = std::vector<std::vector<double>>;

    std::vector<Point> RowOf(const Rows& x, const Rows& y, std::size_t row) const;
    std::vector<Point> Imputed() const;
    std::vector<Point> Mirrored(std::vector<Point> line) const;
    Extent VerticalExtent() const;
    Point LimitAt(double vertical) const;
    std::vector<Point> UpperLimit(const Extent& vertical) const;
    Layer Limits(const Picture& picture) const;
    std::vector<Layer> Centers(const Picture& picture) const;
    bool PointsDown() const;
    bool HasContours() const;
    bool HasTrend() const;
    Point TrendAt(double stdError) const;
    std::vector<Layer> Trend(const Picture& picture) const;
    void SetAxes(Picture& picture) const;
    std::vector<Layer> Contours(const Picture& picture) const;
    std::vector<Point> InsignificantRegion(const Picture& picture, double slope) const;

    const AnalysisData& data_;
    const MABaseModel& base_;
    const PlotOfGroup& plot_;
    MAConst::FunnelYType type_;
    bool isFilled_; ///< whether imputed studies count in the pooled effect
    double center_;
    std::vector<Point> studies_;
    std::vector<Point> imputed_;
    std::vector<Point> upperLimit_; ///< as far as the library has it
};

Funnel::Funnel(const AnalysisData& data, const PlotOfGroup& plot)
    : data_(data),
      base_(data.base),
      plot_(plot),
      type_(data.settings.GetFunnelYType()),
      isFilled_(plot.row == 0 && IsNumber(base_.GetOverallTFEffectSize())),
      center_(isFilled_ ? base_.GetOverallTFEffectSize() : plot.estimate),
      studies_(RowOf(base_.GetFunnelX(), base_.GetFunnelY(), plot.row)),
      imputed_(Imputed()),
      upperLimit_(RowOf(base_.GetFunnelCIX(), base_.GetFunnelCIY(), plot.row))
{}

std::vector<Point> Funnel::RowOf(const Rows& x, const Rows& y, std::size_t row) const
{
    return row < x.size() ? DrawablePoints(x[row], y[row]) : std::vector<Point>();
}

/// The row of the imputed studies follows those of all studies and of the groups.
std::vector<Point> Funnel::Imputed() const
{
    if (!isFilled_)
        return {};
    return RowOf(base_.GetFunnelX(), base_.GetFunnelY(), 1 + data_.groupLabels.size());
}

std::vector<Point> Funnel::Mirrored(std::vector<Point> line) const
{
    for (Point& point : line)
        point.x = center_ - (point.x - center_);
    return line;
}

bool Funnel::PointsDown() const
{
    return type_ == MAConst::FUNNEL_STD_ERROR || type_ == MAConst::FUNNEL_VARIANCE;
}

/// The upper limit, which is where a study with this vertical coordinate would differ from the centre.
Point Funnel::LimitAt(double vertical) const
{
    const double critical = KXDistFun::IdfStdNorm(1 - AlphaOf(data_.settings) / 2);
    return {center_ + critical * StdErrorAt(type_, vertical), vertical};
}

/// The library's line between the smallest and the largest coordinate of a study, and what is left of it to
/// both ends of the axis. Towards precision 0 the limit grows without bound, and leaves the frame at its
/// side.
std::vector<Point> Funnel::UpperLimit(const Extent& vertical) const
{
    std::vector<Point> limit = upperLimit_;
    if (limit.empty())
        return limit;
    if (!PointsDown()) {
        constexpr int steps = 20;
        const double first = limit.front().y;
        for (int i = 1; i <= steps; ++i)
            if (const double y = first + (vertical.First() - first) * i / steps; y > 0)
                limit.insert(limit.begin(), LimitAt(y));
    }
    limit.push_back(LimitAt(vertical.Last()));
    return limit;
}

Layer Funnel::Limits(const Picture& picture) const
{
    Extent vertical;
    vertical.Cover({picture.y.first, picture.y.last});
    std::vector<Point> upper = UpperLimit(vertical);
    std::vector<Point> lower = Mirrored(upper);
    return {Layer::Kind::DASHED_LINE, color::INK, {std::move(upper), std::move(lower)}, {}, 1.2,
            data_.level + " limits"};
}

/// The estimate about which the funnel is, and that of the observed studies where the imputed ones move it.
std::vector<Layer> Funnel::Centers(const Picture& picture) const
{
    const auto upright = [&](double at, Layer::Kind kind, std::string legend) {
        return LineBetween({at, picture.y.first}, {at, picture.y.last}, kind, color::ACCENT,
                           std::move(legend));
    };
    if (imputed_.empty())
        return {upright(center_, Layer::Kind::LINE, "Pooled effect")};
    return {upright(center_, Layer::Kind::DASHED_LINE, "Effect with imputed studies"),
            upright(plot_.estimate, Layer::Kind::LINE, "Effect of observed studies")};
}

/// The library gives contours by their extent at the largest standard error. Only over the standard error is
/// a contour a line.
bool Funnel::HasContours() const
{
    return type_ == MAConst::FUNNEL_STD_ERROR && plot_.row < base_.GetFunnelContourX().size();
}

/// The regression of the test asked for is a line over the standard error.
bool Funnel::HasTrend() const
{
    return plot_.row == 0 && type_ == MAConst::FUNNEL_STD_ERROR && data_.analysis.testStatus &&
           !data_.analysis.HasFailedTest() && IsNumber(base_.GetRegBasedTestLimit());
}

Point Funnel::TrendAt(double stdError) const
{
    return {base_.GetRegBasedTestLimit() + base_.GetRegBasedTestCoef() * stdError, stdError};
}

/// The line of the test, its end at standard error 0, and the interval of that.
std::vector<Layer> Funnel::Trend(const Picture& picture) const
{
    const Point limit = TrendAt(0);
    return {LineBetween(limit, TrendAt(picture.y.first), Layer::Kind::DOTTED_LINE, color::POOLED,
                        "Regression of the small-study test"),
            {Layer::Kind::LINE,
             color::POOLED,
             {{{base_.GetRegBasedTestLimitCILower(), 0}, {base_.GetRegBasedTestLimitCIUpper(), 0}}},
             {},
             3},
            Dots({limit}, Layer::Kind::SQUARES, color::POOLED,
                 fmt::format("Effect at standard error 0, {} CI", data_.level))};
}

/// Standard errors and variances start at 0. Precisions end above it, where the limits are finite.
Extent Funnel::VerticalExtent() const
{
    Extent y;
    for (const std::vector<Point>* points : {&studies_, &imputed_, &upperLimit_})
        y.Cover(*points, &Point::y);
    y.Pad(0.05);
    if (PointsDown() || y.First() < 0)
        y.StartAt(0);
    return y;
}

void Funnel::SetAxes(Picture& picture) const
{
    const Extent y = VerticalExtent();
    const std::vector<Point> limit = PointsDown() ? UpperLimit(y) : upperLimit_;
    const std::vector<Point> mirrored = Mirrored(limit);
    Extent x;
    for (const std::vector<Point>* points : {&studies_, &imputed_, &limit, &mirrored})
        x.Cover(*points, &Point::x);
    x.Cover({center_, plot_.estimate});
    if (HasContours())
        x.Cover(0);
    if (HasTrend())
        x.Cover({base_.GetRegBasedTestLimit(), base_.GetRegBasedTestLimitCILower(),
                 base_.GetRegBasedTestLimitCIUpper(), TrendAt(y.Last()).x});
    x.Pad(0.04);
    picture.x = AnalysisAxis(data_.measure, x);
    picture.y = NumberAxis(Capitalised(VerticalTitle(type_)), y);
    if (PointsDown())
        std::swap(picture.y.first, picture.y.last);
}

/// The region where a test at the level of the contour does not reject. It lies on the null's side of the
/// line, or between the two lines, which start at the null and standard error 0.
std::vector<Point> Funnel::InsignificantRegion(const Picture& picture, double slope) const
{
    const double bottom = picture.y.first;
    const Point end = {slope * bottom, bottom};
    switch (data_.settings.GetFunnelConTourTesType()) {
    case MAConst::CONTOUR_UPPER:
        return {{picture.x.first, 0}, {0, 0}, end, {picture.x.first, bottom}};
    case MAConst::CONTOUR_LOWER:
        return {{picture.x.last, 0}, {0, 0}, end, {picture.x.last, bottom}};
    case MAConst::CONTOUR_TWO_SIDED:
        return {{-end.x, bottom}, {0, 0}, end};
    case MAConst::CONTOUR_NONE:
        break;
    }
    return {};
}

/// The regions from the most significant one, which fills the frame, to the least. Each covers part of those
/// before.
std::vector<Layer> Funnel::Contours(const Picture& picture) const
{
    std::vector<double> levels;
    data_.settings.GetSetFunnelConTourCutoff(levels);
    const std::vector<double> extents = base_.GetFunnelContourX()[plot_.row];
    const double height = base_.GetFunnelContourY()[plot_.row];
    std::vector<std::size_t> order(levels.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](auto a, auto b) { return levels[a] < levels[b]; });

    const Rectangle frame = RectangleOf(picture.x, picture.y);
    std::vector<Point> region = {
        frame.least, {frame.least.x, frame.most.y}, frame.most, {frame.most.x, frame.least.y}};
    std::vector<Layer> regions;
    const auto addRegion = [&](double from, double to) {
        const std::string legend =
            fmt::format("{}, {}", RangeOfP(from, to), WordingOf(data_.settings.GetFunnelConTourTesType()));
        const std::string shade = Shade(regions.size(), levels.size() + 1);
        regions.push_back({Layer::Kind::AREA, shade, {std::move(region)}, {}, 0, legend});
    };
    double from = 0;
    for (const std::size_t i : order) {
        addRegion(from, levels[i]);
        region = InsignificantRegion(picture, extents[i] / height);
        from = levels[i];
    }
    addRegion(from, 1);
    return regions;
}

Picture Funnel::Draw() const
{
    Picture picture = NewScatterPlot(NameOfGroupPlot({"funnel", "Funnel plot", ""}, plot_));
    SetAxes(picture);
    if (HasContours())
        picture.layers = Contours(picture);
    picture.layers.push_back(Limits(picture));
    for (Layer& layer : Centers(picture))
        picture.layers.push_back(std::move(layer));
    if (!imputed_.empty())
        picture.layers.push_back(Dots(imputed_, Layer::Kind::RINGS, color::INK, "Imputed study"));
    picture.layers.push_back(StudyDots(studies_));
    if (HasTrend())
        for (Layer& layer : Trend(picture))
            picture.layers.push_back(std::move(layer));
    picture.description =
        fmt::format("{}: {} by {} and {}{}; the pooled effect and its {} limits form a funnel{}.",
                    picture.title, CountOfStudies(studies_.size()), data_.measure.name, VerticalTitle(type_),
                    imputed_.empty() ? "" : fmt::format(", and {} imputed", imputed_.size()), data_.level,
                    HasTrend() ? "; the line of the small-study test ends at standard error 0" : "");
    return Finished(std::move(picture));
}

} // namespace

std::vector<Picture> FunnelPictures(const AnalysisData& data)
{
    std::vector<Picture> pictures;
    for (const PlotOfGroup& plot : AllAndGroups(data, data.base.GetFunnelX().size()))
        pictures.push_back(Funnel(data, plot).Draw());
    return pictures;
}

} // namespace host
