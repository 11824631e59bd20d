#pragma once

#include "host/draw/Picture.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// Reads texts, marks, areas and lines from an SVG.

struct SvgText
{
    std::string text;
    double x;
    double y;
    std::string anchor; ///< the part of the text at x: "start", "middle" or "end"
    bool isBold;
    bool isRotated;
};

struct SvgMark
{
    double x;
    double y;
    double size; ///< radius, or half the side of a square
};

using SvgPoint = host::Point;
using SvgPoints = std::vector<SvgPoint>;

/// The numbers in an attribute such as "translate(12.5,3) scale(2)".
inline std::vector<double> NumbersIn(std::string attribute)
{
    std::replace_if(
        attribute.begin(), attribute.end(),
        [](char c) { return std::string_view("0123456789.-").find(c) == std::string_view::npos; }, ' ');
    std::istringstream stream(attribute);
    return {std::istream_iterator<double>(stream), std::istream_iterator<double>()};
}

class SvgFigure
{
public:
    explicit SvgFigure(const std::string& svg)
    {
        const pugi::xml_parse_result result = document_.load_string(svg.c_str());
        EXPECT_TRUE(result) << result.description();
    }

    pugi::xml_node Root() const { return document_.child("svg"); }
    double Width() const { return Root().attribute("width").as_double(); }
    double Height() const { return Root().attribute("height").as_double(); }

    std::vector<SvgText> Texts() const
    {
        std::vector<SvgText> texts;
        for (const pugi::xpath_node& found : document_.select_nodes("//*[local-name()='text']")) {
            const pugi::xml_node group = found.node().parent();
            const std::string place = group.attribute("transform").value();
            const std::vector<double> numbers = NumbersIn(place);
            texts.push_back({found.node().text().get(), numbers.at(0), numbers.at(1),
                             group.attribute("text-anchor").value(),
                             std::string(group.attribute("font-weight").value()) == "bold",
                             place.find("rotate") != std::string::npos});
        }
        return texts;
    }

    std::vector<std::string> Words() const
    {
        std::vector<std::string> words;
        for (const SvgText& text : Texts())
            words.push_back(text.text);
        return words;
    }

    // Marks, areas and lines are in the order of drawing, without those of the legend.

    /// `shape` is gnuplot's name.
    std::vector<SvgMark> Marks(const std::string& shape, const std::string& color) const
    {
        std::vector<SvgMark> marks;
        for (const pugi::xml_node& use : Drawn("use", "transform")) {
            const std::vector<double> numbers = NumbersIn(use.attribute("transform").value());
            if (numbers.size() == 3 && ColorOf(use.attribute("color")) == color &&
                std::string_view(use.attribute("xlink:href").value()).ends_with('-' + shape))
                marks.push_back({numbers[0], numbers[1], numbers[2]});
        }
        return marks;
    }

    /// The outlines of areas.
    std::vector<SvgPoints> Areas() const
    {
        std::vector<SvgPoints> areas;
        for (const pugi::xml_node& polygon : Drawn("polygon", "points"))
            areas.push_back(PointsIn(polygon.attribute("points").value()));
        return areas;
    }

    std::vector<SvgPoints> Lines(const std::string& color) const
    {
        std::vector<SvgPoints> lines;
        for (const pugi::xml_node& drawn : Drawn("path", "stroke")) {
            if (ColorOf(drawn.attribute("stroke")) != color)
                continue;
            std::istringstream path(drawn.attribute("d").value());
            for (std::string line; std::getline(path, line, 'M');)
                if (!line.empty())
                    lines.push_back(PointsIn(line));
        }
        return lines;
    }

    // The pixel of a number, with a hyphen for the minus sign, at the level axis and at the upright axis.

    double TickX(const std::string& number) const { return Tick(number, "middle").x; }
    double TickY(const std::string& number) const { return Tick(number, "end").y; }

private:
    SvgText Tick(const std::string& number, const char* anchor) const
    {
        const std::string minus = "\u2212";
        const std::string shown = number.front() == '-' ? minus + number.substr(1) : number;
        for (const SvgText& text : Texts())
            if (text.text == shown && text.anchor == anchor && !text.isBold)
                return text;
        ADD_FAILURE() << "no " << number << " at the axis";
        return {};
    }

    static SvgPoints PointsIn(const std::string& attribute)
    {
        SvgPoints points;
        const std::vector<double> numbers = NumbersIn(attribute);
        for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
            points.push_back({numbers[i], numbers[i + 1]});
        return points;
    }

    /// "rgb( 34,  34,  34)" as "#222222".
    static std::string ColorOf(const pugi::xml_attribute& rgb)
    {
        std::ostringstream color;
        color << '#' << std::hex << std::setfill('0');
        for (const double component : NumbersIn(rgb.value()))
            color << std::setw(2) << static_cast<int>(component);
        return color.str();
    }

    std::vector<pugi::xml_node> Drawn(const std::string& element, const std::string& attribute) const
    {
        std::vector<pugi::xml_node> nodes;
        const std::string path = "//*[local-name()='" + element + "'][@" + attribute + "]";
        for (const pugi::xpath_node& found : document_.select_nodes(path.c_str()))
            if (!IsInLegend(found.node()))
                nodes.push_back(found.node());
        return nodes;
    }

    /// gnuplot draws an entry of the legend as a plot that has a text.
    static bool IsInLegend(pugi::xml_node node)
    {
        while (node &&
               std::string_view(node.attribute("id").value()).find("gnuplot_plot_") == std::string::npos)
            node = node.parent();
        return node && node.select_node(".//*[local-name()='text']");
    }

    pugi::xml_document document_;
};
