#include "host/table/LatexTexts.h"

#include "host/table/Replacements.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace host {

namespace {

constexpr std::array LATEX_REPLACEMENTS{
    Replacement{"tau²", "$\\tau^2$"},
    Replacement{"I²", "$I^2$"},
    Replacement{"²", "$^2$"},
    Replacement{"\\", "\\textbackslash{}"},
    Replacement{"{", "\\{"},
    Replacement{"}", "\\}"},
    Replacement{"$", "\\$"},
    Replacement{"&", "\\&"},
    Replacement{"#", "\\#"},
    Replacement{"%", "\\%"},
    Replacement{"_", "\\_"},
    Replacement{"^", "\\textasciicircum{}"},
    Replacement{"~", "\\textasciitilde{}"},
    Replacement{"<", "$<$"},
    Replacement{">", "$>$"},
    Replacement{"|", "$|$"},
    Replacement{"\"", "\\symbol{34}"},
    Replacement{"--", "-{}-{}"}, // a dash
    Replacement{"''", "'{}'{}"}, // quotation marks
    Replacement{"``", "`{}`{}"},
    Replacement{"?`", "?{}`"},
    Replacement{"!`", "!{}`"},
    // Behind the end of a row, \\, these would belong to it.
    Replacement{"[", "{[}"},
    Replacement{"*", "{*}"},
    Replacement{"\u2212", "$-$"},
    Replacement{"\u00A0", "~"},
    Replacement{"\u2007", "~"},
    Replacement{"\u2002", " "},
    Replacement{"\u2003", " "},
    Replacement{"\u2009", "\\,"},
    Replacement{"\u200A", "\\,"},
    Replacement{"\u202F", "\\,"},
    Replacement{"\u00AD", "\\-"},
    Replacement{"\u200B", ""},
    Replacement{"\uFEFF", ""},
    Replacement{"\u2026", "\\ldots{}"},
    Replacement{"≤", "$\\leq$"},
    Replacement{"⩽", "$\\leq$"},
    Replacement{"≥", "$\\geq$"},
    Replacement{"⩾", "$\\geq$"},
    Replacement{"≠", "$\\neq$"},
    Replacement{"≈", "$\\approx$"},
    Replacement{"≡", "$\\equiv$"},
    Replacement{"∼", "$\\sim$"},
    Replacement{"±", "$\\pm$"},
    Replacement{"×", "$\\times$"},
    Replacement{"÷", "$\\div$"},
    Replacement{"·", "$\\cdot$"},
    Replacement{"∞", "$\\infty$"},
    Replacement{"√", "$\\surd$"},
    Replacement{"∑", "$\\sum$"},
    Replacement{"∆", "$\\Delta$"},
    Replacement{"µ", "$\\mu$"},
    Replacement{"°", "$^\\circ$"},
    Replacement{"′", "$'$"},
    Replacement{"″", "$''$"},
    Replacement{"←", "$\\leftarrow$"},
    Replacement{"↑", "$\\uparrow$"},
    Replacement{"→", "$\\rightarrow$"},
    Replacement{"↓", "$\\downarrow$"},
    Replacement{"¹", "$^1$"},
    Replacement{"³", "$^3$"},
    Replacement{"⁰", "$^0$"},
    Replacement{"⁴", "$^4$"},
    Replacement{"⁵", "$^5$"},
    Replacement{"⁶", "$^6$"},
    Replacement{"⁷", "$^7$"},
    Replacement{"⁸", "$^8$"},
    Replacement{"⁹", "$^9$"},
    Replacement{"⁺", "$^+$"},
    Replacement{"⁻", "$^-$"},
    Replacement{"₀", "$_0$"},
    Replacement{"₁", "$_1$"},
    Replacement{"₂", "$_2$"},
    Replacement{"₃", "$_3$"},
    Replacement{"₄", "$_4$"},
    Replacement{"₅", "$_5$"},
    Replacement{"₆", "$_6$"},
    Replacement{"₇", "$_7$"},
    Replacement{"₈", "$_8$"},
    Replacement{"₉", "$_9$"},
};

/// Capitals that look like Latin ones have no command of their own.
constexpr std::array GREEK_LETTERS{
    Replacement{"Α", "$\\mathrm{A}$"}, Replacement{"Β", "$\\mathrm{B}$"},  Replacement{"Γ", "$\\Gamma$"},
    Replacement{"Δ", "$\\Delta$"},     Replacement{"Ε", "$\\mathrm{E}$"},  Replacement{"Ζ", "$\\mathrm{Z}$"},
    Replacement{"Η", "$\\mathrm{H}$"}, Replacement{"Θ", "$\\Theta$"},      Replacement{"Ι", "$\\mathrm{I}$"},
    Replacement{"Κ", "$\\mathrm{K}$"}, Replacement{"Λ", "$\\Lambda$"},     Replacement{"Μ", "$\\mathrm{M}$"},
    Replacement{"Ν", "$\\mathrm{N}$"}, Replacement{"Ξ", "$\\Xi$"},         Replacement{"Ο", "$\\mathrm{O}$"},
    Replacement{"Π", "$\\Pi$"},        Replacement{"Ρ", "$\\mathrm{P}$"},  Replacement{"Σ", "$\\Sigma$"},
    Replacement{"Τ", "$\\mathrm{T}$"}, Replacement{"Υ", "$\\Upsilon$"},    Replacement{"Φ", "$\\Phi$"},
    Replacement{"Χ", "$\\mathrm{X}$"}, Replacement{"Ψ", "$\\Psi$"},        Replacement{"Ω", "$\\Omega$"},
    Replacement{"α", "$\\alpha$"},     Replacement{"β", "$\\beta$"},       Replacement{"γ", "$\\gamma$"},
    Replacement{"δ", "$\\delta$"},     Replacement{"ε", "$\\varepsilon$"}, Replacement{"ζ", "$\\zeta$"},
    Replacement{"η", "$\\eta$"},       Replacement{"θ", "$\\theta$"},      Replacement{"ι", "$\\iota$"},
    Replacement{"κ", "$\\kappa$"},     Replacement{"λ", "$\\lambda$"},     Replacement{"μ", "$\\mu$"},
    Replacement{"ν", "$\\nu$"},        Replacement{"ξ", "$\\xi$"},         Replacement{"ο", "$o$"},
    Replacement{"π", "$\\pi$"},        Replacement{"ρ", "$\\rho$"},        Replacement{"ς", "$\\varsigma$"},
    Replacement{"σ", "$\\sigma$"},     Replacement{"τ", "$\\tau$"},        Replacement{"υ", "$\\upsilon$"},
    Replacement{"φ", "$\\varphi$"},    Replacement{"χ", "$\\chi$"},        Replacement{"ψ", "$\\psi$"},
    Replacement{"ω", "$\\omega$"},
};

struct Range
{
    char32_t first;
    char32_t last;
};

/// Letters, signs and marks that LaTeX knows in UTF-8 with the font encoding T1 (t1enc.dfu of its base).
constexpr std::array KNOWN_IN_T1{
    Range{0x00A1, 0x0125}, Range{0x0128, 0x0137}, Range{0x0139, 0x013E}, Range{0x0141, 0x0148},
    Range{0x014A, 0x017E}, Range{0x0192, 0x0192}, Range{0x01CD, 0x01D4}, Range{0x01E6, 0x01EB},
    Range{0x0218, 0x021B}, Range{0x1E9E, 0x1E9E}, Range{0x2010, 0x2016}, Range{0x2018, 0x201A},
    Range{0x201C, 0x201E}, Range{0x2020, 0x2022}, Range{0x2030, 0x2031}, Range{0x2039, 0x203A},
    Range{0x20AC, 0x20AC}, Range{0x2116, 0x2116}, Range{0x2122, 0x2122}};

bool IsKnownInT1(char32_t character)
{
    return std::any_of(KNOWN_IN_T1.begin(), KNOWN_IN_T1.end(), [character](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

bool IsGreek(char32_t character)
{
    return (character >= 0x0370 && character <= 0x03FF) || (character >= 0x1F00 && character <= 0x1FFF);
}

/// A Greek letter is a symbol where it stands alone; in a word it is a letter.
bool IsGreekSymbol(const std::u32string& characters, std::size_t i)
{
    const bool isInWord =
        (i > 0 && IsGreek(characters[i - 1])) || (i + 1 < characters.size() && IsGreek(characters[i + 1]));
    return IsGreek(characters[i]) && !isInWord;
}

} // namespace

std::string LatexText(const std::string& text)
{
    // Composed, because LaTeX has no letters of two characters.
    const std::u32string characters = Composed(text);
    std::string latex;
    std::string pending;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const std::string one = TextOf(characters[i]);
        if (!IsGreekSymbol(characters, i)) {
            pending += one;
            continue;
        }
        latex += Replaced(pending, LATEX_REPLACEMENTS) + Replaced(one, GREEK_LETTERS);
        pending.clear();
    }
    return latex + Replaced(pending, LATEX_REPLACEMENTS);
}

std::string LatexNumber(const std::string& text)
{
    constexpr std::array numbers{Replacement{"-", "$-$"}, Replacement{"<", "$<$"}, Replacement{"%", "\\%"},
                                 Replacement{"[", "{[}"}};
    const std::size_t missing = text == "-" || text.ends_with(" -") ? text.size() - 1 : text.size();
    return Replaced(text.substr(0, missing), numbers) + (missing < text.size() ? "--" : "");
}

std::string LatexNeeds(std::string_view table)
{
    const std::u32string characters = Composed(table);
    const auto isBeyondAscii = [](char32_t character) { return character >= 0x80; };
    const auto isUnknown = [](char32_t character) { return character >= 0x80 && !IsKnownInT1(character); };
    const auto hasAny = [&](const auto& is) { return std::any_of(characters.begin(), characters.end(), is); };
    std::string needs = "% needs \\usepackage{booktabs}\n";
    if (hasAny(isUnknown))
        needs += "% pdflatex lacks some of the letters here: compile with xelatex or lualatex, with\n"
                 "% \\usepackage{fontspec} and \\setmainfont{...} of a font that has them, such as "
                 "Noto Serif CJK SC\n";
    else if (hasAny(isBeyondAscii))
        needs += "% needs \\usepackage[T1]{fontenc}\n";
    return needs;
}

} // namespace host
