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

/// The name of one of several plots of a kind, which number and text distinguish.
PlotName NumberedName(const PlotName& kind, std::size_t number, const std::string& text);
/// `kind` names the plot of all studies.
PlotName NameOfGroupPlot(const PlotName& kind, const PlotOfGroup& plot);

/// A plot without axes and layers, and without the space beside its frame. Its texts are positioned from the
/// left of the frame.
Picture NewScatterPlot(const PlotName& name, double frameWidth = 420, double frameHeight = 360);

/// Adds the space that axes and legend need. All layers must be there.
Picture Finished(Picture picture);

/// Adds lines of text below the horizontal axis of a finished picture.
Picture WithNotes(Picture picture, const std::vector<std::string>& notes);

/// The outline of the area between two lines over the same x; points that cannot be drawn are left out. Empty
/// without lines.
std::vector<Point> Between(const std::vector<double>& x, const std::vector<double>& lower,
                           const std::vector<double>& upper);

/// The width beside the frame that the legends of the layers need.
double LegendWidth(const std::vector<Layer>& layers);

/// A straight line.
Layer LineBetween(Point first, Point last, Layer::Kind kind, const char* color, std::string legend);

/// The line of no effect. It is dotted, so that it differs from the other lines in grey as well.
Layer NullLine(Point first, Point last);

/// Marks of one size.
Layer Dots(std::vector<Point> points, Layer::Kind kind, const char* color, std::string legend);
/// Discs that show where others lie beneath.
Layer StudyDots(std::vector<Point> studies);

/// A bubble for each point that can be drawn. Its area is proportional to its weight. Small bubbles lie on
/// large ones.
Layer Bubbles(const std::vector<double>& x, const std::vector<double>& y, const std::vector<double>& weights);

} // namespace host
