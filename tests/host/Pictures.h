#pragma once

#include "host/RunProgram.h"
#include "host/SvgFigure.h"

#include <cmath>
#include <functional>

/// Coordinates are written with two decimals.
inline constexpr double halfPixelDigit = 0.0051;

/// The pictures of a run, and its results.
class Pictures
{
public:
    explicit Pictures(const Arguments& arguments)
    {
        const std::string json = folder_.PathOf("json");
        ReportOf(arguments + Arguments{"--plots", folder_.PathOf("plots"), "--json", json});
        results_ = nlohmann::json::parse(folder_.Read("json"))["results"];
    }

    Texts Names() const { return folder_.Files("plots"); }
    const nlohmann::json& Results() const { return results_; }
    SvgFigure Figure(const std::string& name) const
    {
        return SvgFigure(folder_.Read("plots/" + name + ".svg"));
    }

private:
    TemporaryFolder folder_;
    nlohmann::json results_;
};

/// Converts numbers of an axis to pixels.
using PixelScale = std::function<double(double)>;

inline PixelScale ScaleThrough(double first, double firstPixel, double last, double lastPixel)
{
    const double perUnit = (lastPixel - firstPixel) / (last - first);
    return [=](double value) { return firstPixel + (value - first) * perUnit; };
}

// The scale of an axis follows from two of its ticks.

inline PixelScale LevelScale(const SvgFigure& figure, const char* first, const char* last)
{
    return ScaleThrough(std::stod(first), figure.TickX(first), std::stod(last), figure.TickX(last));
}

/// The upright axis. Its numbers are at a distance from the ticks, so that only differences are right.
inline PixelScale UprightScale(const SvgFigure& figure, const char* first, const char* last)
{
    return ScaleThrough(std::stod(first), figure.TickY(first), std::stod(last), figure.TickY(last));
}

/// An axis of ratios, by their logarithms.
inline PixelScale RatioScale(const SvgFigure& figure, const char* first, const char* last)
{
    return ScaleThrough(std::log(std::stod(first)), figure.TickX(first), std::log(std::stod(last)),
                        figure.TickX(last));
}
