#pragma once

#include "host/draw/Picture.h"
#include "host/plots/PlotGroups.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

// What the plots with two axes have in common.

struct PlotName
{
    std::string file;
    std::string title;
    std::string heading; ///< over the plot; empty for none
};

/// Of several plots of a kind, which are told apart by number and text.
PlotName NumberedName(const PlotName& kind, std::size_t number, const std::string& text);
/// `kind` names the plot of all studies.
PlotName NameOfGroupPlot(const PlotName& kind, const PlotOfGroup& plot);

/// A plot without axes and layers yet, and without the space beside its frame, from whose left its texts are
/// measured.
Picture NewScatterPlot(const PlotName& name, double frameWidth = 420, double frameHeight = 360);

/// Adds the space that axes and legend need, when all layers are there.
Picture Finished(Picture picture);

/// A straight line.
Layer LineBetween(Point first, Point last, Layer::Kind kind, const char* color, std::string legend);

/// That of no effect: dotted, to be told from the others in grey too.
Layer NullLine(Point first, Point last);

/// Marks of one size.
Layer Dots(std::vector<Point> points, Layer::Kind kind, const char* color, std::string legend);
Layer StudyDots(std::vector<Point> studies);

/// A bubble for each point that can be drawn, its area as its weight; small ones lie on large ones.
Layer Bubbles(const std::vector<double>& x, const std::vector<double>& y, const std::vector<double>& weights);

} // namespace host
