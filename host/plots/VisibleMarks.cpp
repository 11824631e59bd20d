#include "host/plots/VisibleMarks.h"

#include "host/plots/ScatterPlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <unordered_map>
#include <utility>

namespace host {

namespace {

constexpr std::size_t MANY = 5000; // marks of a layer, or points of a line, that are not worth a thought
constexpr double WHITE = 255;

/// The places of a picture's frame, in pixels from its top left corner.
class FramePlaces
{
public:
    explicit FramePlaces(const Picture& picture) : picture_(picture) {}

    Point Of(const Point& point) const
    {
        return {Share(picture_.x, point.x) * picture_.frame.width,
                (1 - Share(picture_.y, point.y)) * picture_.frame.height};
    }
    bool Has(const Point& place) const
    {
        return place.x >= 0 && place.x <= picture_.frame.width && place.y >= 0 &&
               place.y <= picture_.frame.height;
    }
    double DistanceFromCentre(const Point& place) const
    {
        return std::hypot(place.x / picture_.frame.width - 0.5, place.y / picture_.frame.height - 0.5);
    }

private:
    static double Share(const Axis& axis, double value)
    {
        return (value - axis.first) / (axis.last - axis.first);
    }

    const Picture& picture_;
};

struct Mark
{
    Point point;
    double radius;
};

std::vector<Mark> MarksOf(const Layer& layer)
{
    std::vector<Mark> marks;
    marks.reserve(layer.radii.size());
    for (const std::vector<Point>& piece : layer.pieces)
        for (const Point& point : piece)
            marks.push_back({point, layer.radii[marks.size()]});
    return marks;
}

/// Marks that cannot be told apart, and the one that is drawn.
struct Heap
{
    std::size_t outermost;
    double distance; ///< its own, from the centre
    std::size_t count = 0;
};

/// Marks of one key look alike: their radii differ by a fifth at most, and their places by half a radius.
std::uint64_t KeyOf(const Point& place, double radius)
{
    const double size = std::round(4 * std::log2(std::max(radius, 1.0)));
    const double spacing = std::max(1.0, std::exp2(size / 4) / 2);
    const auto part = [](double number) { return static_cast<std::uint64_t>(number); };
    return part(size) << 48U | part(place.x / spacing) << 24U | part(place.y / spacing);
}

/// In the order of their outermost marks, which later ones lie on.
std::vector<Heap> HeapsOf(const std::vector<Mark>& marks, const FramePlaces& places)
{
    std::unordered_map<std::uint64_t, Heap> heaps;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const Point place = places.Of(marks[i].point);
        if (!places.Has(place))
            continue;
        const double distance = places.DistanceFromCentre(place);
        Heap& heap = heaps.try_emplace(KeyOf(place, marks[i].radius), Heap{i, distance}).first->second;
        ++heap.count;
        if (distance > heap.distance)
            heap = {i, distance, heap.count};
    }
    std::vector<Heap> sorted;
    sorted.reserve(heaps.size());
    for (const auto& [key, heap] : heaps)
        sorted.push_back(heap);
    std::sort(sorted.begin(), sorted.end(),
              [](const Heap& a, const Heap& b) { return a.outermost < b.outermost; });
    return sorted;
}

/// "#rrggbb" with a share of white.
std::string Lightened(const std::string& color, double white)
{
    std::string light = "#";
    for (std::size_t i = 1; i < color.size(); i += 2) {
        const auto part = static_cast<double>(std::strtol(color.substr(i, 2).c_str(), nullptr, 16));
        light += fmt::format("{:02x}", std::lround(part + white * (WHITE - part)));
    }
    return light;
}

/// How densely marks lie, and how that is drawn.
struct Density
{
    std::size_t least; ///< marks at a place
    double white;
    const char* legend; ///< null for that of the marks
};

constexpr std::array DENSITIES = {Density{1, 0.5, nullptr}, Density{10, 0.2, "10 or more at a place"},
                                  Density{100, 0, "100 or more at a place"}};

/// The marks of the heaps with `least` to less than `end` marks.
Layer LayerOf(const Layer& all, const std::vector<Mark>& marks, const std::vector<Heap>& heaps,
              std::size_t least, std::size_t end)
{
    Layer layer = all;
    layer.pieces.assign(1, {});
    layer.radii.clear();
    for (const Heap& heap : heaps) {
        if (heap.count < least || heap.count >= end)
            continue;
        layer.pieces.front().push_back(marks[heap.outermost].point);
        layer.radii.push_back(marks[heap.outermost].radius);
    }
    return layer;
}

std::vector<Layer> LayersByDensity(const Layer& all, const std::vector<Mark>& marks,
                                   const std::vector<Heap>& heaps)
{
    std::vector<Layer> layers;
    for (std::size_t i = 0; i < DENSITIES.size(); ++i) {
        const std::size_t end = i + 1 < DENSITIES.size() ? DENSITIES[i + 1].least : SIZE_MAX;
        Layer layer = LayerOf(all, marks, heaps, DENSITIES[i].least, end);
        if (layer.radii.empty())
            continue;
        layer.color = Lightened(all.color, DENSITIES[i].white);
        if (DENSITIES[i].legend != nullptr && !all.legend.empty())
            layer.legend = DENSITIES[i].legend;
        layers.push_back(std::move(layer));
    }
    return layers;
}

/// Numbers of marks.
struct MarkCount
{
    std::size_t all = 0;
    std::size_t drawn = 0;
};

std::vector<Layer> VisibleMarks(const Layer& layer, const FramePlaces& places, MarkCount& count)
{
    const std::vector<Mark> marks = MarksOf(layer);
    const std::vector<Heap> heaps = HeapsOf(marks, places);
    count.all += marks.size();
    count.drawn += heaps.size();
    if (layer.kind == Layer::Kind::DISCS)
        return LayersByDensity(layer, marks, heaps);
    return {LayerOf(layer, marks, heaps, 1, SIZE_MAX)};
}

/// Of the points from `first` to before `end`, which share a column of pixels: both ends, the least and the
/// most, in their order.
void AddColumn(const std::vector<Point>& line, std::size_t first, std::size_t end,
               std::vector<Point>& visible)
{
    const auto from = line.begin() + static_cast<std::ptrdiff_t>(first);
    const auto to = line.begin() + static_cast<std::ptrdiff_t>(end);
    const auto [least, most] =
        std::minmax_element(from, to, [](const Point& a, const Point& b) { return a.y < b.y; });
    std::array kept = {from, std::min(least, most), std::max(least, most), to - 1};
    const auto* const last = std::unique(kept.begin(), kept.end());
    for (const auto* point = kept.begin(); point != last; ++point)
        visible.push_back(**point);
}

std::vector<Point> VisibleLine(const std::vector<Point>& line, const FramePlaces& places)
{
    if (line.size() <= MANY)
        return line;
    const auto columnOf = [&](std::size_t i) { return std::floor(places.Of(line[i]).x); };
    std::vector<Point> visible;
    for (std::size_t first = 0, i = 1; i <= line.size(); ++i)
        if (i == line.size() || columnOf(i) != columnOf(first))
            AddColumn(line, std::exchange(first, i), i, visible);
    return visible;
}

/// Behind the areas, so that lines are seen on marks that would fill the frame.
void PutBehindLines(std::vector<Layer>& layers, std::vector<Layer> marks)
{
    const auto firstLine = std::find_if(layers.begin(), layers.end(),
                                        [](const Layer& layer) { return layer.kind != Layer::Kind::AREA; });
    layers.insert(firstLine, std::make_move_iterator(marks.begin()), std::make_move_iterator(marks.end()));
}

/// Of a picture without panels.
void KeepVisible(Picture& picture, MarkCount& count)
{
    const FramePlaces places(picture);
    const double legendWidth = LegendWidth(picture.layers);
    std::vector<Layer> marks;
    for (Layer& layer : picture.layers) {
        if (layer.radii.size() > MANY)
            for (Layer& visible : VisibleMarks(layer, places, count))
                marks.push_back(std::move(visible));
        else if (layer.kind != Layer::Kind::AREA)
            for (std::vector<Point>& line : layer.pieces)
                line = VisibleLine(line, places);
    }
    std::erase_if(picture.layers, [](const Layer& layer) { return layer.radii.size() > MANY; });
    PutBehindLines(picture.layers, std::move(marks));
    picture.width += LegendWidth(picture.layers) - legendWidth;
}

} // namespace

Picture WithVisibleMarks(Picture picture)
{
    MarkCount count;
    KeepVisible(picture, count);
    for (Picture& panel : picture.panels)
        KeepVisible(panel, count);
    if (count.drawn < count.all)
        picture.description +=
            fmt::format(" {} marks stand for {}: of those that cannot be told apart at this "
                        "size, one is drawn.",
                        count.drawn, count.all);
    return picture;
}

} // namespace host
