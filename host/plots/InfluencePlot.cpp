#include "host/plots/InfluencePictures.h"
#include "host/plots/PictureMakers.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/PointLabels.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/NumberText.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace host {

namespace {

constexpr double PANEL_WIDTH = 340;
constexpr double PANEL_HEIGHT = 104;
constexpr double SPACE_LEFT = 76;  // of the numbers
constexpr double SPACE_ABOVE = 30; // of the title
constexpr double SPACE_BELOW = 30; // of the numbers
constexpr double TITLE_BELOW = 24; // of the axis of the studies
constexpr std::size_t COLUMNS = 2;

/// A diagnostic: its values, what it is without influence, and the cut-offs beyond which it tells of some.
struct Diagnostic
{
    std::string title;
    std::vector<double> values;
    double reference;
    std::vector<double> cutoffs;
};

std::vector<Diagnostic> DiagnosticsOf(const InfluenceTable& table)
{
    const auto k = static_cast<double>(table.labels.size());
    const double residual = table.cutoffs[0];
    const double dffits = table.cutoffs[1];
    return {{"Studentized residual", table.residuals, 0, {-residual, residual}},
            {"DFFITS", table.dffits, 0, {-dffits, dffits}},
            {"Cook's distance", table.cookDistances, 0, {table.cutoffs[2]}},
            {"Covariance ratio", table.covarianceRatios, 1, {}},
            {"tau² without the study", table.tau2, table.tau2OfAll, {}},
            {"Q without the study", table.q, table.qOfAll, {}},
            {"Leverage", table.hat, static_cast<double>(table.parameterCount) / k, {table.cutoffs[3]}},
            {"Weight in percent", table.weights, 100 / k, {}}};
}

/// The values over the numbers of their studies; lines break where a value is missing.
std::vector<std::vector<Point>> LinesOf(const std::vector<double>& values)
{
    std::vector<std::vector<Point>> lines(1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (IsNumber(values[i]))
            lines.back().push_back({static_cast<double>(i + 1), values[i]});
        else
            lines.emplace_back();
    }
    return lines;
}

/// The points of the studies that are influential, or of the others.
std::vector<Point> PointsOf(const InfluenceTable& table, const std::vector<double>& values,
                            bool areInfluential)
{
    std::vector<Point> points;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (IsNumber(values[i]) && table.IsInfluential(i) == areInfluential)
            points.push_back({static_cast<double>(i + 1), values[i]});
    return points;
}

/// The change of each coefficient without the study. They have one cut-off.
std::vector<Diagnostic> CoefficientChangesOf(const InfluenceTable& table)
{
    constexpr std::size_t cutoff = 4;
    std::vector<Diagnostic> diagnostics;
    for (std::size_t j = 0; j < table.parameters.size(); ++j) {
        Diagnostic diagnostic = {LabelText(table.parameters[j]), {}, 0, {}};
        for (const std::vector<double>& ofStudy : table.dfbetas)
            diagnostic.values.push_back(ofStudy[j]);
        if (table.cutoffs.size() > cutoff)
            diagnostic.cutoffs = {-table.cutoffs[cutoff], table.cutoffs[cutoff]};
        diagnostics.push_back(std::move(diagnostic));
    }
    return diagnostics;
}

bool IsBeyondCutoff(const Diagnostic& diagnostic, double value)
{
    return std::any_of(diagnostic.cutoffs.begin(), diagnostic.cutoffs.end(), [&](double cutoff) {
        return IsNumber(cutoff) && (cutoff < 0 ? value < cutoff : value > cutoff);
    });
}

/// Those beyond a cut-off of the panel come first, then the studies that are influential by another panel.
std::vector<LabelledPoint> LabelledPointsOf(const InfluenceTable& table, const Diagnostic& diagnostic)
{
    std::vector<LabelledPoint> points;
    for (std::size_t i = 0; i < diagnostic.values.size(); ++i) {
        const double value = diagnostic.values[i];
        if (!IsNumber(value))
            continue;
        const bool isBeyond = IsBeyondCutoff(diagnostic, value);
        const LabelledPoint point = {{static_cast<double>(i + 1), value}, table.labels[i], isBeyond};
        if (isBeyond)
            points.insert(points.begin(), point);
        else if (table.IsInfluential(i))
            points.push_back(point);
    }
    return points;
}

/// The name with the cut-offs, which may be beyond the panel.
std::string TitleOf(const Diagnostic& diagnostic)
{
    if (diagnostic.cutoffs.empty() || !IsNumber(diagnostic.cutoffs.back()))
        return diagnostic.title;
    const char* const sign = diagnostic.cutoffs.size() > 1 ? "±" : "";
    return fmt::format("{}, cut-off {}{:.3g}", diagnostic.title, sign, diagnostic.cutoffs.back());
}

/// Smaller ones where there are many studies.
Layer StudyDotsOf(const InfluenceTable& table, std::vector<Point> points, const char* color)
{
    constexpr std::size_t few = 60;
    constexpr double small = 1.8;
    Layer dots = Dots(std::move(points), Layer::Kind::DISCS, color, "");
    if (table.labels.size() > few)
        dots.radii.assign(dots.radii.size(), small);
    return dots;
}

/// A cut-off far beyond all values would flatten them: it is shown where it is near.
bool IsNear(double cutoff, const Extent& y)
{
    return IsNumber(cutoff) && cutoff >= y.First() - y.Length() && cutoff <= y.Last() + y.Length();
}

Extent StudyExtent(std::size_t count)
{
    Extent x;
    x.Cover(1);
    x.Cover(static_cast<double>(count));
    x.Pad(0.03);
    return x;
}

/// A tick at each study, or at round numbers where there are many.
std::vector<Tick> StudyTicks(std::size_t count, const Extent& x)
{
    constexpr std::size_t most = 20;
    std::vector<Tick> ticks;
    for (std::size_t i = 1; i <= count && count <= most; ++i)
        ticks.push_back({static_cast<double>(i), fmt::format("{}", i)});
    if (count > most)
        for (const Tick& tick : NumberTicks(x))
            if (tick.at >= 1 && tick.at == std::floor(tick.at))
                ticks.push_back(tick);
    return ticks;
}

Picture PanelOf(const InfluenceTable& table, const Diagnostic& diagnostic, std::size_t position)
{
    const std::vector<Point> others = PointsOf(table, diagnostic.values, false);
    const std::vector<Point> influential = PointsOf(table, diagnostic.values, true);
    Extent y;
    y.Cover(diagnostic.reference);
    y.Cover(others, &Point::y);
    y.Cover(influential, &Point::y);
    Layer cutoffs = {Layer::Kind::DASHED_LINE, color::ACCENT, {}, {}, 1.2};
    const Extent x = StudyExtent(table.labels.size());
    const Extent ofValues = y;
    for (const double cutoff : diagnostic.cutoffs) {
        if (!IsNear(cutoff, ofValues))
            continue;
        y.Cover(cutoff);
        cutoffs.pieces.push_back({{x.First(), cutoff}, {x.Last(), cutoff}});
    }
    y.Pad(0.1);

    Picture panel = {};
    const double column = static_cast<double>(position % COLUMNS);
    const std::size_t rowsAbove = position / COLUMNS;
    const auto row = static_cast<double>(rowsAbove);
    panel.frame = {SPACE_LEFT + column * (PANEL_WIDTH + SPACE_LEFT),
                   SPACE_ABOVE + row * (PANEL_HEIGHT + SPACE_ABOVE + SPACE_BELOW), PANEL_WIDTH, PANEL_HEIGHT};
    panel.x = {"", x.First(), x.Last(), StudyTicks(table.labels.size(), x)};
    panel.y = NumberAxis("", y);
    panel.layers = {LineBetween({x.First(), diagnostic.reference}, {x.Last(), diagnostic.reference},
                                Layer::Kind::DOTTED_LINE, color::FAINT, ""),
                    std::move(cutoffs),
                    {Layer::Kind::LINE, color::STUDY, LinesOf(diagnostic.values), {}, 1},
                    StudyDotsOf(table, others, color::POOLED),
                    StudyDotsOf(table, influential, color::ACCENT)};
    std::vector<Point> dots = others;
    dots.insert(dots.end(), influential.begin(), influential.end());
    panel.texts = LabelsBeside(LabelledPointsOf(table, diagnostic), dots, panel);
    panel.texts.push_back({ShortenedText(TitleOf(diagnostic), PANEL_WIDTH / FONT_SIZE), 0,
                           panel.frame.top - SPACE_ABOVE / 2, PictureText::Align::LEFT, true});
    for (PictureText& text : panel.texts)
        text.x += panel.frame.left;
    return panel;
}

/// A panel for each diagnostic that has a value.
Picture PictureOf(const InfluenceTable& table, const char* name, const char* title,
                  const std::vector<Diagnostic>& diagnostics)
{
    Picture picture = {};
    picture.name = name;
    picture.title = title;
    for (const Diagnostic& diagnostic : diagnostics)
        if (HasAnyValue(diagnostic.values))
            picture.panels.push_back(PanelOf(table, diagnostic, picture.panels.size()));
    if (picture.panels.empty())
        return picture;
    const std::size_t rowCount = (picture.panels.size() + COLUMNS - 1) / COLUMNS;
    const auto rows = static_cast<double>(rowCount);
    picture.width = COLUMNS * (PANEL_WIDTH + SPACE_LEFT) + PICTURE_MARGIN;
    picture.height = rows * (PANEL_HEIGHT + SPACE_ABOVE + SPACE_BELOW) + TITLE_BELOW;
    picture.panels.front().texts.push_back({"Study, numbered in the order of the table", picture.width / 2,
                                            picture.height - TITLE_BELOW / 1.5, PictureText::Align::CENTER});
    return picture;
}

} // namespace

Picture InfluencePicture(const InfluenceTable& table)
{
    Picture picture = PictureOf(table, "influence", "Influence", DiagnosticsOf(table));
    picture.description = fmt::format(
        "{}: the deletion diagnostics of {}, a panel each. Dotted lines are what all studies have "
        "together or on average, dashed ones the cut-offs; studies beyond a cut-off are named.",
        picture.title, CountOfStudies(table.labels.size()));
    return picture;
}

Picture CoefficientChangePicture(const InfluenceTable& table)
{
    Picture picture =
        PictureOf(table, "dfbetas", "Influence on the coefficients (DFBETAS)", CoefficientChangesOf(table));
    picture.description =
        fmt::format("{}: the change of each coefficient without each of {}, in standard errors, "
                    "a panel each. Dashed lines are the cut-offs; studies beyond are named.",
                    picture.title, CountOfStudies(table.labels.size()));
    return picture;
}

std::vector<Picture> InfluencePicturesOf(const InfluenceTable& table)
{
    if (table.IsEmpty())
        return {};
    std::vector<Picture> pictures;
    for (const Picture& picture : {InfluencePicture(table), CoefficientChangePicture(table)})
        if (!picture.panels.empty())
            pictures.push_back(picture);
    if (HasBaujatPoint(table)) // without one of two studies no model is left to compare with
        pictures.push_back(BaujatPicture(table));
    return pictures;
}

std::vector<Picture> InfluencePictures(const AnalysisData& data)
{
    return InfluencePicturesOf(InfluenceTableOf(data));
}

} // namespace host
