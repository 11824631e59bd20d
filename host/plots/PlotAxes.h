#pragma once

#include "host/draw/Picture.h"
#include "host/text/Measures.h"

#include <limits>
#include <string>
#include <vector>

namespace host {

/// A range that grows with the values that it covers. Values that cannot be drawn do not count.
class Extent
{
public:
    void Cover(double value);
    void Cover(const std::vector<double>& values);
    void Cover(const std::vector<Point>& points, double Point::*coordinate);
    /// Adds a share of the length to both ends; to a range that is too short to be drawn, at least a half.
    void Pad(double share);

    void StartAt(double value) { first_ = value; }

    bool Contains(double value) const { return value >= first_ && value <= last_; }
    double First() const { return first_; }
    double Last() const { return last_; }
    double Length() const { return last_ - first_; }

private:
    double first_ = std::numeric_limits<double>::infinity();
    double last_ = -std::numeric_limits<double>::infinity();
};

/// The points whose coordinates can both be drawn.
std::vector<Point> DrawablePoints(const std::vector<double>& x, const std::vector<double>& y);

/// Ticks at round numbers, which have equally many decimals.
std::vector<Tick> NumberTicks(const Extent& numbers);
/// Ticks at round whole numbers, for values between which there is nothing: years, counts, 0 and 1.
std::vector<Tick> WholeNumberTicks(const Extent& numbers);
/// Ticks at the logarithms of round ratios.
std::vector<Tick> RatioTicks(const Extent& logarithms);

Axis NumberAxis(std::string title, const Extent& extent);

/// An axis of these values: with ticks at both where there are two, and with whole numbers alone where the
/// values are whole.
Axis CovariateAxis(std::string title, const std::vector<double>& values, const Extent& extent);

/// An axis on the scale of the analysis; that of a ratio is labelled on the natural scale. `quantity` is its
/// title without the scale, in lower case.
Axis EffectAxis(const Measure& measure, const std::string& quantity, const Extent& extent);

/// The axis of effects as they are analysed: of ratios as above, of others labelled on that scale.
Axis AnalysisAxis(const Measure& measure, const Extent& extent);

} // namespace host
