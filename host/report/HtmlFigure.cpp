#include "host/report/HtmlFigure.h"

#include "host/report/HtmlTexts.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace host {

namespace {

constexpr double TALL = 500;        // pixels above which a picture may fill a page of paper
constexpr double PAPER_SHAPE = 1.2; // height of a slice over its width, which leaves room for the caption

struct Band
{
    double top;
    double bottom;
};

bool IsSliced(const Picture& picture)
{
    return picture.rowHeight > 0 && picture.height > PAPER_SHAPE * picture.width;
}

/// Where rows end: at the picture's own cuts, or at even distances.
std::vector<double> CutsOf(const Picture& picture)
{
    if (!picture.cuts.empty())
        return picture.cuts;
    const double end = picture.frame.top + picture.frame.height;
    std::vector<double> cuts;
    for (double cut = picture.frame.top; cut < end; cut += picture.rowHeight)
        cuts.push_back(cut);
    cuts.push_back(end);
    return cuts;
}

/// Divides the rows into bands that fit a page between the headings and the axis with all below it.
std::vector<Band> Slices(const Picture& picture)
{
    const double end = picture.frame.top + picture.frame.height;
    const double room = PAPER_SHAPE * picture.width - picture.frame.top - (picture.height - end);
    const std::vector<double> cuts = CutsOf(picture);
    std::vector<Band> slices = {{cuts.front(), cuts.front()}};
    for (const double cut : cuts) {
        Band& last = slices.back();
        const bool isFull = cut - last.top > room && last.bottom > last.top;
        if (isFull)
            slices.push_back({last.bottom, cut});
        else
            last.bottom = cut;
    }
    return slices;
}

std::string BandOf(const Picture& picture, const Band& band)
{
    return fmt::format(
        "<svg viewBox=\"0 {:.2f} {:.2f} {:.2f}\"><use xlink:href=\"#{}-gnuplot_canvas\"/></svg>\n", band.top,
        picture.width, band.bottom - band.top, picture.name);
}

std::string SlicesForPaper(const Picture& picture)
{
    if (!IsSliced(picture))
        return {};
    const double end = picture.frame.top + picture.frame.height;
    std::string html = "<div class=\"paper\" aria-hidden=\"true\">\n";
    for (const Band& slice : Slices(picture))
        html += "<div>" + BandOf(picture, {0, picture.frame.top}) + BandOf(picture, slice) +
                BandOf(picture, {end, picture.height}) + "</div>\n";
    return html + "</div>\n";
}

const char* ClassOf(const Picture& picture)
{
    if (IsSliced(picture))
        return " class=\"sliced\"";
    return picture.height > TALL ? " class=\"tall\"" : "";
}

} // namespace

std::string HtmlFigure(const DrawnPicture& drawn, int number)
{
    const Picture& picture = drawn.picture;
    const std::string caption = fmt::format("Figure {}. {}", number, picture.description);
    return fmt::format(
        "<figure{}>\n<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"{}\" "
        "style=\"max-width: {:.0f}px\">\n{}\n</div>\n{}<figcaption>{}</figcaption>\n</figure>\n",
        ClassOf(picture), HtmlEscaped(fmt::format("Figure {}. {}", number, picture.title)), picture.width,
        drawn.bytes, SlicesForPaper(picture), HtmlEscaped(caption));
}

} // namespace host
