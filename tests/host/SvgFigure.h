#pragma once

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// What stands in an SVG, as the tests of the pictures see it.

struct SvgText
{
    std::string text;
    double x;
    double y;
    std::string anchor; ///< "start", "middle" or "end" stands at x
    bool isBold;
    bool isRotated;
};

struct SvgMark
{
    double x;
    double y;
    double size; ///< radius, or half the side of a square
    std::string shape;
    std::string color; ///< "#rrggbb"
};

struct SvgPoint
{
    double x;
    double y;
};

/// A line, or an area's outline.
struct SvgShape
{
    std::vector<SvgPoint> points;
    std::string color;
};

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
    std::string ChildText(const char* element) const { return Root().child(element).text().get(); }

    std::vector<SvgText> Texts() const
    {
        std::vector<SvgText> texts;
        for (const pugi::xpath_node& found : document_.select_nodes("//*[local-name()='text']")) {
            const pugi::xml_node group = found.node().parent();
            const std::string place = group.attribute("transform").value();
            const std::vector<double> numbers = NumbersIn(place);
            const SvgText text = {found.node().text().get(),
                                  numbers.at(0),
                                  numbers.at(1),
                                  group.attribute("text-anchor").value(),
                                  std::string(group.attribute("font-weight").value()) == "bold",
                                  place.find("rotate") != std::string::npos};
            texts.push_back(text);
        }
        return texts;
    }

    /// Marks in the order of drawing, without those of the legend.
    std::vector<SvgMark> Marks() const
    {
        std::vector<SvgMark> marks;
        for (const pugi::xpath_node& found : document_.select_nodes("//*[local-name()='use'][@transform]")) {
            const pugi::xml_node use = found.node();
            const std::string link = use.attribute("xlink:href").value();
            const std::vector<double> numbers = NumbersIn(use.attribute("transform").value());
            if (numbers.size() == 3 && !IsInLegend(use))
                marks.push_back({numbers[0], numbers[1], numbers[2], link.substr(link.rfind('-') + 1),
                                 ColorOf(use.attribute("color").value())});
        }
        return marks;
    }

    std::vector<SvgMark> Marks(const std::string& shape, const std::string& color) const
    {
        std::vector<SvgMark> marks;
        for (const SvgMark& mark : Marks())
            if (mark.shape == shape && mark.color == color)
                marks.push_back(mark);
        return marks;
    }

    /// Areas in the order of drawing, without those of the legend.
    std::vector<SvgShape> Areas() const
    {
        std::vector<SvgShape> areas;
        for (const pugi::xpath_node& found : document_.select_nodes("//*[local-name()='polygon']"))
            if (!IsInLegend(found.node()))
                areas.push_back({PointsIn(found.node().attribute("points").value()),
                                 ColorOf(found.node().attribute("fill").value())});
        return areas;
    }

    /// Lines of one colour, likewise.
    std::vector<std::vector<SvgPoint>> Lines(const std::string& color) const
    {
        std::vector<std::vector<SvgPoint>> lines;
        for (const pugi::xpath_node& found : document_.select_nodes("//*[local-name()='path'][@stroke]")) {
            if (IsInLegend(found.node()) || ColorOf(found.node().attribute("stroke").value()) != color)
                continue;
            std::istringstream path(found.node().attribute("d").value());
            for (std::string line; std::getline(path, line, 'M');)
                if (!line.empty())
                    lines.push_back(PointsIn(line));
        }
        return lines;
    }

    /// Pixel of the number at an axis.
    double TickAt(const std::string& number, double SvgText::*coordinate, const char* anchor) const
    {
        for (const SvgText& text : Texts())
            if (text.text == number && text.anchor == anchor && !text.isBold)
                return text.*coordinate;
        ADD_FAILURE() << "no " << number << " at the axis";
        return 0;
    }

private:
    static std::vector<SvgPoint> PointsIn(const std::string& attribute)
    {
        std::vector<SvgPoint> points;
        const std::vector<double> numbers = NumbersIn(attribute);
        for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
            points.push_back({numbers[i], numbers[i + 1]});
        return points;
    }

    /// "rgb( 34,  34,  34)" as "#222222".
    static std::string ColorOf(const std::string& rgb)
    {
        std::ostringstream color;
        color << '#' << std::hex << std::setfill('0');
        for (const double component : NumbersIn(rgb))
            color << std::setw(2) << static_cast<int>(component);
        return color.str();
    }

    /// An entry of the legend is a plot of its own, which has a text.
    static bool IsInLegend(pugi::xml_node mark)
    {
        for (pugi::xml_node node = mark; node; node = node.parent()) {
            const std::string id = node.attribute("id").value();
            if (id.find("gnuplot_plot_") != std::string::npos)
                return node.select_node(".//*[local-name()='text']") != nullptr;
        }
        return false;
    }

    pugi::xml_document document_;
};
