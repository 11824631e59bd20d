#pragma once

#include <string>
#include <vector>

namespace host {

/// A place in the coordinates of a picture's axes.
struct Point
{
    double x;
    double y;
};

/// Colours that differ in lightness as well, for print in grey and for the colour-blind.
namespace color {
inline constexpr const char* INK = "#222222";
inline constexpr const char* FAINT = "#8c8c8c";
inline constexpr const char* STUDY = "#6c9bc8";
inline constexpr const char* POOLED = "#173a5e";
inline constexpr const char* BAND = "#dde7f0";
inline constexpr const char* PREDICTION = "#f0f4f8"; // lies about BAND
inline constexpr const char* FITTED = "#f6c9b4";
inline constexpr const char* PREDICTED = "#9db3ca";
inline constexpr const char* ACCENT = "#c2410c";
inline constexpr const char* WHITE = "#ffffff";
} // namespace color

/// Marks, lines or areas of one look. What lies beyond the ends of an axis is cut off.
struct Layer
{
    enum class Kind
    {
        AREA, ///< each piece is the outline of one
        LINE, ///< each piece is one
        DASHED_LINE,
        DOTTED_LINE,
        SQUARES, ///< the points of all pieces, with `radii`
        DISCS,
        BUBBLES, ///< discs with a rim, to be told apart where they overlap
        RINGS    ///< hollow
    };

    Kind kind;
    std::string color;
    std::vector<std::vector<Point>> pieces;
    std::vector<double> radii = {}; ///< of marks, in pixels: half the side of a square
    double width = 1;               ///< of lines, in pixels
    std::string legend = {};        ///< empty for none
    double opacity = 1;             ///< below 1, what lies beneath shows through
};

/// A number at an axis, or a label. A number is shown with the minus sign of print.
struct Tick
{
    double at;
    std::string text;
};

struct Axis
{
    std::string title;
    double first; ///< at the left, or at the bottom; may be the larger end
    double last;
    std::vector<Tick> ticks;
    bool isShown = true;
};

/// Text beside the axes. `x` and `y` are pixels from the top left corner of the picture to the middle of the
/// line's left end, its right end, or its centre.
struct PictureText
{
    enum class Align
    {
        LEFT,
        RIGHT,
        CENTER
    };

    std::string text;
    double x;
    double y;
    Align align = Align::LEFT;
    bool isBold = false;
};

/// The rectangle between the axes, in pixels from the top left corner of the picture.
struct Frame
{
    double left;
    double top;
    double width;
    double height;
};

/// A level line anywhere in a picture, in pixels from its top left corner.
struct Rule
{
    double left;
    double right;
    double y;
};

/// A picture, independent of the program that draws it. Sizes are in pixels of 1/96 inch. Texts may hold any
/// characters.
struct Picture
{
    std::string name;        ///< of its file, without extension
    std::string title;       ///< "Forest plot"
    std::string description; ///< what it shows, for those who cannot see it
    double width;
    double height;
    Frame frame;
    Axis x;
    Axis y;
    std::vector<Layer> layers; ///< later ones lie on earlier ones
    std::vector<PictureText> texts = {};
    std::vector<Rule> rules = {};
    double rowHeight = 0; ///< of a line, where the frame holds rows; else 0
    /// Where the frame holds rows: pixels from the top at which the picture may be cut, from the top of the
    /// frame to its end. What is above the frame and below it is repeated with each part.
    std::vector<double> cuts = {};
    /// The picture in parts, each with the header and the axis, for paper; empty where it fits one page. All
    /// have the size of the first.
    std::vector<Picture> pages = {};
    /// Where there are several frames, a picture for each. Of these count frame, axes, layers and texts, and
    /// of the whole its names and its size.
    std::vector<Picture> panels = {};
};

inline constexpr double FONT_SIZE = 12;      ///< of all texts, in pixels
inline constexpr double PICTURE_MARGIN = 14; ///< about all that is in a picture, in pixels

} // namespace host
