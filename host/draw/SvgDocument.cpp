#include "host/draw/SvgDocument.h"

#include "host/draw/GnuplotProcess.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>
#include <pugixml.hpp>

#include <sstream>
#include <string_view>

namespace host {

namespace {

constexpr std::string_view BOLD = ":Bold";

/// The elements of gnuplot's own title and description, and the titles that it gives to the parts of a plot.
bool IsGnuplotsText(const pugi::xml_node& node)
{
    const std::string_view name = node.name();
    return name == "title" || name == "desc";
}

void RemoveTexts(pugi::xml_node element)
{
    for (pugi::xml_node child = element.first_child(); child;) {
        const pugi::xml_node next = child.next_sibling();
        if (IsGnuplotsText(child))
            element.remove_child(child);
        child = next;
    }
}

void SetAttribute(pugi::xml_node element, const char* name, const std::string& value)
{
    pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute)
        attribute = element.append_attribute(name);
    attribute.set_value(value.c_str());
}

/// Identifiers and the references to them.
void PrefixIdentifiers(pugi::xml_node element, const std::string& prefix)
{
    if (const pugi::xml_attribute id = element.attribute("id"))
        SetAttribute(element, "id", prefix + id.value());
    if (const std::string link = element.attribute("xlink:href").value(); !link.empty())
        SetAttribute(element, "xlink:href", '#' + prefix + link.substr(1));
}

/// gnuplot appends the weight to the family where its own markup is switched off.
void SetFontWeight(pugi::xml_node element)
{
    const std::string family = element.attribute("font-family").value();
    if (!family.ends_with(BOLD))
        return;
    SetAttribute(element, "font-family", family.substr(0, family.size() - BOLD.size()));
    SetAttribute(element, "font-weight", "bold");
}

class Cleaner : public pugi::xml_tree_walker
{
public:
    explicit Cleaner(std::string prefix) : prefix_(std::move(prefix)) {}

    bool for_each(pugi::xml_node& node) override
    {
        RemoveTexts(node);
        PrefixIdentifiers(node, prefix_);
        SetFontWeight(node);
        node.remove_attribute("shape-rendering"); // "crispEdges" makes stairs of slanting edges
        return true;
    }

private:
    std::string prefix_;
};

void AddText(pugi::xml_node svg, const char* element, const std::string& id, const std::string& text)
{
    pugi::xml_node node = svg.prepend_child(element);
    SetAttribute(node, "id", id);
    node.text().set(PlainText(text).c_str());
}

/// The drawing keeps its coordinates, which the attribute viewBox has.
void SetSize(pugi::xml_node svg, const Picture& picture, const PictureSize& size)
{
    const double height = size.height.value_or(size.width * picture.height / picture.width);
    SetAttribute(svg, "width", fmt::format("{:.6g}", size.width));
    SetAttribute(svg, "height", fmt::format("{:.6g}", height));
}

} // namespace

std::string SvgElement(const std::string& drawing, const Picture& picture,
                       const std::optional<PictureSize>& size)
{
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(drawing.data(), drawing.size());
    pugi::xml_node svg = document.child("svg");
    if (!result || !svg)
        throw DrawingFailure("gnuplot wrote no SVG");
    Cleaner cleaner(picture.name + '-');
    svg.traverse(cleaner);
    RemoveTexts(svg);
    AddText(svg, "desc", picture.name + "-description", picture.description);
    AddText(svg, "title", picture.name + "-title", picture.title);
    if (size)
        SetSize(svg, picture, *size);
    SetAttribute(svg, "role", "img");
    SetAttribute(svg, "aria-labelledby", picture.name + "-title " + picture.name + "-description");
    std::ostringstream text;
    svg.print(text, "", pugi::format_raw);
    return text.str();
}

std::string SvgFile(const std::string& element)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n" + element + '\n';
}

} // namespace host
