#include "host/plots/ForestStyle.h"

#include "host/draw/Picture.h"

namespace host {

namespace {

using Part = ForestPart;

const ForestStyle PLAIN = {
    .parts = {Part::LABELS, Part::REMARKS, Part::COLUMNS, Part::FRAME, Part::EFFECTS, Part::WEIGHTS},
    .showsFigures = false,
    .joinsFigures = true,
    .events = {"Events/total", "Events", "Total"},
    .sizes = {"Number", "Number", ""},
    .means = {"Mean (SD)", "Mean", "SD"},
    .timeHeader = "Events/time",
    .treatment = "Treatment",
    .control = "Control",
    .labelHeader = "Study",
    .effectHeader = "{symbol} [{level} CI]",
    .frameHeader = "",
    .axisTitle = nullptr,
    .weightHeader = "Weight",
    .percentSign = "%",
    .pooled = "Pooled",
    .overall = "Overall",
    .estimate = "{} [{}, {}]",
    .signedEstimate = "{} [{}, {}]",
    .heterogeneity = "Heterogeneity: Q = {q}, df = {df}, {p}, I² = {i2}%, tau² = {tau2}",
    .heterogeneityOfFixed = "Heterogeneity: Q = {q}, df = {df}, {p}, I² = {i2}%",
    .effectTest = "",
    .groupTest = "Test between the groups: Q = {q}, df = {df}, {p}",
    .i2Decimals = 1,
    .p = {"p", " ", 0.001, true, false},
    .favours = "Favours",
    .favoursStandAbove = false,
    .notesStandBeside = false,
    .namesModel = true,
    .hasOverallLine = true,
    .hasHeaderRule = false,
    .squareColor = color::STUDY,
    .insideColor = nullptr,
    .diamondColor = color::POOLED,
    .nullColor = color::FAINT,
    .frameWidth = 320,
};

/// After the forest plots of Cochrane reviews.
const ForestStyle REVMAN = {
    .parts = {Part::LABELS, Part::REMARKS, Part::COLUMNS, Part::WEIGHTS, Part::EFFECTS, Part::FRAME},
    .showsFigures = true,
    .joinsFigures = false,
    .events = {"Events/total", "Events", "Total"},
    .sizes = {"Total", "Total", ""},
    .means = {"Mean (SD)", "Mean", "SD"},
    .timeHeader = "Time",
    .treatment = "Experimental",
    .control = "Control",
    .labelHeader = "Study or Subgroup",
    .effectHeader = "{title}\n{method}, {model}, {level} CI",
    .frameHeader = "{title}\n{method}, {model}, {level} CI",
    .axisTitle = "",
    .weightHeader = "Weight",
    .percentSign = "%",
    .pooled = "Subtotal ({level} CI)",
    .overall = "Total ({level} CI)",
    .estimate = "{} [{}, {}]",
    .signedEstimate = "{} [{}, {}]",
    .heterogeneity = "Heterogeneity: Tau² = {tau2}; Chi² = {q}, df = {df} ({p}); I² = {i2}%",
    .heterogeneityOfFixed = "Heterogeneity: Chi² = {q}, df = {df} ({p}); I² = {i2}%",
    .effectTest = "Test for overall effect{which}: {upper} = {value} ({p})",
    .groupTest = "Test for subgroup differences: Chi² = {q}, df = {df} ({p}), I² = {i2}%",
    .i2Decimals = 0,
    .p = {"P", " ", 0.00001, true, false},
    .favours = "Favours",
    .favoursStandAbove = false,
    .notesStandBeside = true,
    .namesModel = false,
    .hasOverallLine = false,
    .hasHeaderRule = true,
    .squareColor = "#2456b8",
    .insideColor = color::WHITE,
    .diamondColor = "#000000",
    .nullColor = color::INK,
    .frameWidth = 280,
};

/// After the forest plots of The BMJ.
const ForestStyle BMJ = {
    .parts = {Part::LABELS, Part::REMARKS, Part::COLUMNS, Part::FRAME, Part::WEIGHTS, Part::EFFECTS},
    .showsFigures = true,
    .joinsFigures = true,
    .events = {"No of events/total", "Events", "Total"},
    .sizes = {"No of participants", "No", ""},
    .means = {"Mean (SD)", "Mean", "SD"},
    .timeHeader = "No of events/time",
    .treatment = "Treatment",
    .control = "Control",
    .labelHeader = "Study",
    .effectHeader = "{name}\n({level} CI)",
    .frameHeader = "{name}\n({level} CI)",
    .axisTitle = "",
    .weightHeader = "Weight\n(%)",
    .percentSign = "",
    .pooled = "Subtotal ({level} CI)",
    .overall = "Total ({level} CI)",
    .estimate = "{} ({} to {})",
    .signedEstimate = "{} ({} to {})",
    .heterogeneity = "Test for heterogeneity: τ²={tau2}, χ²={q}, df={df}, {p}, I²={i2}%",
    .heterogeneityOfFixed = "Test for heterogeneity: χ²={q}, df={df}, {p}, I²={i2}%",
    .effectTest = "Test for overall effect{which}: {symbol}={value}, {p}",
    .groupTest = "Test for subgroup differences: χ²={q}, df={df}, {p}",
    .i2Decimals = 0,
    .p = {"P", "", 0.001, true, false},
    .favours = "Favours",
    .favoursStandAbove = false,
    .notesStandBeside = true,
    .namesModel = false,
    .hasOverallLine = true,
    .hasHeaderRule = true,
    .squareColor = "#000000",
    .insideColor = color::WHITE,
    .diamondColor = "#000000",
    .nullColor = color::INK,
    .frameWidth = 260,
};

/// After the forest plots of JAMA, whose style of numbers is that of the AMA manual.
const ForestStyle JAMA = {
    .parts = {Part::LABELS, Part::REMARKS, Part::COLUMNS, Part::EFFECTS, Part::FRAME, Part::WEIGHTS},
    .showsFigures = true,
    .joinsFigures = false,
    .events = {"No. of events/total", "No. of\nevents", "Total\nNo."},
    .sizes = {"No.", "Total\nNo.", ""},
    .means = {"Mean (SD)", "Mean", "SD"},
    .timeHeader = "Time",
    .treatment = "Treatment",
    .control = "Control",
    .labelHeader = "Source",
    .effectHeader = "{title}\n({level} CI)",
    .frameHeader = "",
    .axisTitle = "{title} ({level} CI)",
    .weightHeader = "Weight, %",
    .percentSign = "",
    .pooled = "Subtotal",
    .overall = "Total",
    .estimate = "{} ({}-{})",
    .signedEstimate = "{} ({} to {})",
    .heterogeneity = "Heterogeneity: τ² = {tau2}; χ²{sub} = {q} ({p}); I² = {i2}%",
    .heterogeneityOfFixed = "Heterogeneity: χ²{sub} = {q} ({p}); I² = {i2}%",
    .effectTest = "Test for overall effect{which}: {symbol} = {value} ({p})",
    .groupTest = "Test for subgroup differences: χ²{sub} = {q} ({p})",
    .i2Decimals = 1,
    .p = {"P", " ", 0.001, false, true},
    .favours = "Favors",
    .favoursStandAbove = true,
    .notesStandBeside = true,
    .namesModel = false,
    .hasOverallLine = true,
    .hasHeaderRule = true,
    .squareColor = "#1d5c96",
    .insideColor = color::WHITE,
    .diamondColor = "#1d5c96",
    .nullColor = color::INK,
    .frameWidth = 280,
};

} // namespace

const ForestStyle& StyleOf(ForestLayout layout)
{
    switch (layout) {
    case ForestLayout::PLAIN:
        return PLAIN;
    case ForestLayout::REVMAN:
        return REVMAN;
    case ForestLayout::BMJ:
        return BMJ;
    case ForestLayout::JAMA:
        return JAMA;
    }
    return PLAIN;
}

} // namespace host
