#pragma once

#include "host/RunProgram.h"
#include "host/SvgFigure.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

using Texts = std::vector<std::string>;

/// Coordinates are written with two decimals.
inline constexpr double halfPixelDigit = 0.0051;

/// The pictures of a run, and its results.
class Pictures
{
public:
    explicit Pictures(const Arguments& arguments)
    {
        const ProgramRun run = RunProgram(
            arguments + Arguments{"--plots", folder_.PathOf("plots"), "--json", folder_.PathOf("json")});
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        results_ = nlohmann::json::parse(folder_.Read("json"))["results"];
        for (const auto& entry : std::filesystem::directory_iterator(folder_.PathOf("plots")))
            names_.push_back(entry.path().filename().string());
        std::sort(names_.begin(), names_.end());
    }

    const Texts& Names() const { return names_; }
    const nlohmann::json& Results() const { return results_; }
    SvgFigure Figure(const std::string& name) const
    {
        return SvgFigure(folder_.Read("plots/" + name + ".svg"));
    }

private:
    TemporaryFolder folder_;
    Texts names_;
    nlohmann::json results_;
};

inline Texts TextsOf(const SvgFigure& figure)
{
    Texts texts;
    for (const SvgText& text : figure.Texts())
        texts.push_back(text.text);
    return texts;
}

/// From numbers on a linear scale to pixels, by two ticks of an axis.
class PixelScale
{
public:
    PixelScale(double first, double firstPixel, double last, double lastPixel)
        : first_(first), firstPixel_(firstPixel), perUnit_((lastPixel - firstPixel) / (last - first))
    {}
    double operator()(double value) const { return firstPixel_ + (value - first_) * perUnit_; }

private:
    double first_;
    double firstPixel_;
    double perUnit_;
};

/// Of the upright axis, from which the numbers stand at a distance: for differences alone.
inline PixelScale VerticalScale(const SvgFigure& figure, const char* first, const char* last)
{
    return {std::stod(first), figure.TickAt(first, &SvgText::y, "end"), std::stod(last),
            figure.TickAt(last, &SvgText::y, "end")};
}

inline PixelScale RatioScale(const SvgFigure& figure, const char* first, const char* last)
{
    return {std::log(std::stod(first)), figure.TickAt(first, &SvgText::x, "middle"),
            std::log(std::stod(last)), figure.TickAt(last, &SvgText::x, "middle")};
}
