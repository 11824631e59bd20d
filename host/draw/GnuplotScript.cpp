#include "host/draw/GnuplotScript.h"

#include "host/draw/CutToRectangle.h"
#include "host/draw/FontCoverage.h"
#include "host/draw/GnuplotProcess.h"
#include "host/draw/GnuplotTerminal.h"
#include "host/draw/PictureFit.h"
#include "host/text/NumberText.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace host {

namespace {

using Kind = Layer::Kind;

constexpr double RIM = 1.3;          // of marks, in pixels
constexpr double MARK_IN_LEGEND = 4; // its radius

bool IsMarks(Kind kind)
{
    return kind == Kind::SQUARES || kind == Kind::DISCS || kind == Kind::BUBBLES || kind == Kind::RINGS;
}

/// A mark is drawn full; one with a rim has its inside drawn on top.
struct MarkColors
{
    std::string outside;
    std::string inside; ///< empty for none
};

MarkColors ColorsOf(const Layer& layer)
{
    if (layer.kind == Kind::BUBBLES)
        return {color::POOLED, layer.color};
    if (layer.kind == Kind::RINGS)
        return {layer.color, color::WHITE};
    return {layer.color, ""};
}

bool IsEmpty(const Layer& layer)
{
    return std::all_of(layer.pieces.begin(), layer.pieces.end(),
                       [](const std::vector<Point>& piece) { return piece.empty(); });
}

/// Areas are cut here, because gnuplot cuts those of a PNG wrongly and sometimes reads past its memory.
Layer CutToAxes(Layer layer, const Picture& picture)
{
    if (layer.kind == Kind::AREA)
        for (std::vector<Point>& outline : layer.pieces)
            outline = CutToRectangle(std::move(outline), RectangleOf(picture.x, picture.y));
    return layer;
}

/// "#rrggbb" as gnuplot has it with the share of light that passes: "aarrggbb".
std::string SeenThrough(const std::string& color, double opacity)
{
    constexpr double MOST = 255;
    return fmt::format("{:02x}{}", std::lround(MOST * (1 - opacity)), color.substr(1));
}

/// As gnuplot reads it in data.
std::string DataColor(const std::string& color, double opacity)
{
    return "0x" + (opacity < 1 ? SeenThrough(color, opacity) : color.substr(1));
}

/// As gnuplot reads it in commands.
std::string ColorOf(const Layer& layer)
{
    return layer.opacity < 1 ? '#' + SeenThrough(layer.color, layer.opacity) : layer.color;
}

/// Writes one script. All texts are in one block of data, each on a line behind a bar, so that none can end
/// the block. Commands refer to a text by its number.
class ScriptWriter
{
public:
    ScriptWriter(const Picture& picture, Terminal terminal)
        : whole_(picture), picture_(&picture), terminal_(std::move(terminal))
    {}

    std::string Write();

private:
    std::string TextReference(const std::string& text);
    void SetAxis(char letter, const Axis& axis);
    void SetFrame();
    void SetTexts();
    void SetRules();
    void SetKey();
    void AddMark(const Layer& layer, const Point& point, double radius);
    void AddData(const Layer& layer, std::size_t number);
    void AddPlots();
    void AddFrame();
    void AddPanels();
    void AddPages();
    std::vector<std::string> PlotsOf(const Layer& layer, std::size_t number);
    static std::string Style(const Layer& layer);
    std::string LegendStyle(const Layer& layer) const;

    const Picture& whole_;
    const Picture* picture_; ///< the whole, or the panel that is being drawn
    Terminal terminal_;
    std::string texts_;
    std::size_t textCount_ = 0;
    std::size_t layerCount_ = 0;
    std::string commands_;
};

std::string ScriptWriter::TextReference(const std::string& text)
{
    texts_ += '|' + (terminal_.drawsLetters ? DrawableText(text) : PlainText(text)) + '\n';
    return fmt::format("$texts[{}][2:*]", ++textCount_);
}

std::string ShownTick(const std::string& text)
{
    const bool isNumber = text.find_first_not_of("0123456789.e+-") == std::string::npos;
    return isNumber ? WithMinusSign(text) : text;
}

void ScriptWriter::SetAxis(char letter, const Axis& axis)
{
    commands_ += fmt::format("set {}range [{:.15g}:{:.15g}]\n", letter, axis.first, axis.last);
    if (!axis.isShown) {
        commands_ += fmt::format("unset {}tics\n", letter);
        return;
    }
    commands_ +=
        fmt::format("set {}label {} noenhanced tc rgb '{}'\n", letter, TextReference(axis.title), color::INK);
    std::string separator;
    commands_ += fmt::format("set {}tics (", letter);
    for (const Tick& tick : axis.ticks) {
        commands_ += fmt::format("{}{} {:.15g}", separator, TextReference(ShownTick(tick.text)), tick.at);
        separator = ", ";
    }
    commands_ += ")\n";
}

void ScriptWriter::SetFrame()
{
    const Frame& frame = picture_->frame;
    commands_ += fmt::format("set lmargin at screen {:.6f}\nset rmargin at screen {:.6f}\n"
                             "set tmargin at screen {:.6f}\nset bmargin at screen {:.6f}\n",
                             frame.left / whole_.width, (frame.left + frame.width) / whole_.width,
                             1 - frame.top / whole_.height, 1 - (frame.top + frame.height) / whole_.height);
    const int left = picture_->y.isShown ? 2 : 0;
    commands_ += fmt::format("set border {} lc rgb '{}'\n", 1 + left, color::INK);
    commands_ += "set tics out nomirror scale 0.6 noenhanced\n";
    SetAxis('x', picture_->x);
    SetAxis('y', picture_->y);
    commands_ += "set xlabel offset 0,0.4\nset clip two\n";
}

void ScriptWriter::SetTexts()
{
    for (const PictureText& text : picture_->texts) {
        const char* const align = text.align == PictureText::Align::LEFT    ? "left"
                                  : text.align == PictureText::Align::RIGHT ? "right"
                                                                            : "center";
        commands_ += fmt::format("set label {} at screen {:.6f},{:.6f} {} noenhanced font '{}' tc rgb '{}'\n",
                                 TextReference(text.text), text.x / whole_.width, 1 - text.y / whole_.height,
                                 align, text.isBold ? "sans-serif:Bold" : "", color::INK);
    }
}

void ScriptWriter::SetRules()
{
    for (const Rule& rule : picture_->rules)
        commands_ += fmt::format(
            "set arrow from screen {0:.6f},{2:.6f} to screen {1:.6f},{2:.6f} nohead lw 0.8 "
            "lc rgb '{3}'\n",
            rule.left / whole_.width, rule.right / whole_.width, 1 - rule.y / whole_.height, color::INK);
}

/// The legend is to the right of the frame and starts at its top.
void ScriptWriter::SetKey()
{
    const bool hasLegend = std::any_of(picture_->layers.begin(), picture_->layers.end(),
                                       [](const Layer& layer) { return !layer.legend.empty(); });
    if (!hasLegend) {
        commands_ += "unset key\n";
        return;
    }
    const Frame& frame = picture_->frame;
    commands_ +=
        fmt::format("set key at screen {:.6f},{:.6f} left top Left reverse noenhanced samplen 2.2 "
                    "spacing 1.3 width 0\n",
                    (frame.left + frame.width + 8) / whole_.width, 1 - (frame.top + 4) / whole_.height);
}

void ScriptWriter::AddMark(const Layer& layer, const Point& point, double radius)
{
    const auto add = [&](double size, const std::string& color) {
        commands_ += fmt::format("{:.15g} {:.15g} {:.4f} {}\n", point.x, point.y,
                                 size / terminal_.pixelsPerPointSize, DataColor(color, layer.opacity));
    };
    const MarkColors colors = ColorsOf(layer);
    add(radius, colors.outside);
    if (!colors.inside.empty() && radius > RIM)
        add(radius - RIM, colors.inside);
}

void ScriptWriter::AddData(const Layer& layer, std::size_t number)
{
    commands_ += fmt::format("$layer{} << END_OF_DATA\n", number);
    std::size_t mark = 0;
    const auto add = [&](const Point& point) {
        commands_ += fmt::format("{:.15g} {:.15g}\n", point.x, point.y);
    };
    for (const std::vector<Point>& piece : layer.pieces) {
        // From its middle to one end and back to the other, a line starts where that is not to be seen.
        if (terminal_.slantsStarts && layer.kind == Kind::LINE && piece.size() == 2)
            add({std::midpoint(piece[0].x, piece[1].x), std::midpoint(piece[0].y, piece[1].y)});
        for (const Point& point : piece) {
            if (IsMarks(layer.kind))
                AddMark(layer, point, layer.radii[mark++]);
            else
                add(point);
        }
        commands_ += '\n';
    }
    commands_ += "END_OF_DATA\n";
}

std::string ScriptWriter::Style(const Layer& layer)
{
    switch (layer.kind) {
    case Kind::AREA:
        return fmt::format("filledcurves closed fs solid noborder fc rgb '{}'", ColorOf(layer));
    case Kind::LINE:
        return fmt::format("lines lc rgb '{}' lw {}", ColorOf(layer), layer.width);
    case Kind::DASHED_LINE:
        return fmt::format("lines lc rgb '{}' lw {} dt (8,5)", ColorOf(layer), layer.width);
    case Kind::DOTTED_LINE:
        return fmt::format("lines lc rgb '{}' lw {} dt (2,3)", ColorOf(layer), layer.width);
    case Kind::SQUARES:
        return "points pt 5 ps variable lc rgb variable";
    case Kind::DISCS:
    case Kind::BUBBLES:
    case Kind::RINGS:
        return "points pt 7 ps variable lc rgb variable";
    }
    return {};
}

/// In the legend, marks have one size, and areas an edge that makes a white one visible.
std::string ScriptWriter::LegendStyle(const Layer& layer) const
{
    if (layer.kind == Kind::AREA)
        return fmt::format("filledcurves fs solid border lc rgb '{}' fc rgb '{}'", color::FAINT,
                           ColorOf(layer));
    if (!IsMarks(layer.kind))
        return Style(layer);
    const int pointType = layer.kind == Kind::SQUARES ? 5 : layer.kind == Kind::RINGS ? 6 : 7;
    // The rim of a bubble lies beneath its inside too, and darkens it to about the full colour.
    return fmt::format("points pt {} ps {:.4f} lc rgb '{}'", pointType,
                       MARK_IN_LEGEND / terminal_.pixelsPerPointSize,
                       layer.kind == Kind::BUBBLES ? layer.color : ColorOf(layer));
}

std::vector<std::string> ScriptWriter::PlotsOf(const Layer& layer, std::size_t number)
{
    const char* const columns = IsMarks(layer.kind) ? "1:2:3:4" : "1:2";
    std::vector<std::string> plots = {
        fmt::format("$layer{} using {} with {} notitle", number, columns, Style(layer))};
    if (!layer.legend.empty())
        plots.push_back(
            fmt::format("keyentry with {} title {}", LegendStyle(layer), TextReference(layer.legend)));
    return plots;
}

void ScriptWriter::AddPlots()
{
    std::vector<std::string> plots;
    for (const Layer& whole : picture_->layers) {
        const std::size_t number = layerCount_++;
        const Layer layer = CutToAxes(whole, *picture_);
        if (IsEmpty(layer))
            continue;
        AddData(layer, number);
        for (std::string& plot : PlotsOf(layer, number))
            plots.push_back(std::move(plot));
    }
    commands_ += fmt::format("plot {}\n", fmt::join(plots, ", \\\n     "));
}

void ScriptWriter::AddFrame()
{
    SetFrame();
    SetTexts();
    SetRules();
    SetKey();
    AddPlots();
}

void ScriptWriter::AddPanels()
{
    commands_ += "set multiplot\n";
    for (const Picture& panel : whole_.panels) {
        picture_ = &panel;
        commands_ += "unset label\nunset xlabel\nunset ylabel\n";
        AddFrame();
    }
    commands_ += "unset multiplot\n";
}

/// Each is a plot of its own, for which the terminal begins a page.
void ScriptWriter::AddPages()
{
    for (const Picture& page : whole_.pages) {
        picture_ = &page;
        commands_ += "unset label\nunset arrow\n";
        AddFrame();
    }
}

std::string ScriptWriter::Write()
{
    if (!whole_.pages.empty())
        AddPages();
    else if (!whole_.panels.empty())
        AddPanels();
    else
        AddFrame();
    return fmt::format("set encoding utf8\nset terminal {}\n$texts << END_OF_TEXTS\n{}END_OF_TEXTS\n{}",
                       terminal_.command, texts_, commands_);
}

} // namespace

std::string GnuplotScript(const Picture& picture, const DrawingMedium& medium)
{
    const auto [fitted, scale] = FittedTo(medium, picture);
    return ScriptWriter(fitted, TerminalOf(fitted, medium, scale)).Write();
}

} // namespace host
