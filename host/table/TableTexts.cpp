#include "host/table/TableTexts.h"

#include "host/text/PlainText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace host {

namespace {

/// What a formula can begin with, full-width characters too, which some spreadsheets take for the usual ones.
constexpr std::array<std::string_view, 11> BEGINNINGS_OF_FORMULAS{
    "=", "+", "-", "@", "\t", "\r", "\n", "\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"};

bool IsNumberText(std::string_view text)
{
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() &&
           text.find_first_of("0123456789") != std::string_view::npos;
}

bool IsFormula(std::string_view text)
{
    return !IsNumberText(text) &&
           std::any_of(BEGINNINGS_OF_FORMULAS.begin(), BEGINNINGS_OF_FORMULAS.end(),
                       [&](std::string_view beginning) { return text.starts_with(beginning); });
}

struct Replacement
{
    std::string_view text;
    std::string_view by;
};

/// The first that fits at a place wins.
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
};

/// The text with the replacements, from left to right.
template <std::size_t N>
std::string Replaced(std::string_view text, const std::array<Replacement, N>& replacements)
{
    std::string replaced;
    while (!text.empty()) {
        const auto found = std::find_if(replacements.begin(), replacements.end(),
                                        [&](const Replacement& one) { return text.starts_with(one.text); });
        replaced += found == replacements.end() ? text.substr(0, 1) : found->by;
        text.remove_prefix(found == replacements.end() ? 1 : found->text.size());
    }
    return replaced;
}

} // namespace

std::string CsvField(const std::string& text)
{
    std::string field = IsFormula(text) ? "\"'" : "\"";
    for (const char c : PlainText(text))
        field += c == '"' ? std::string("\"\"") : std::string(1, c);
    return field + '"';
}

std::string MarkdownText(const std::string& text)
{
    std::string escaped;
    for (const char c : PlainText(text)) {
        if (std::string_view("\\`*_[]<>&|~$!#").find(c) != std::string_view::npos)
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string LatexText(const std::string& text)
{
    return Replaced(PlainText(text), LATEX_REPLACEMENTS);
}

std::string LatexNumber(const std::string& text)
{
    constexpr std::array numbers{Replacement{"-", "$-$"}, Replacement{"<", "$<$"}, Replacement{"%", "\\%"},
                                 Replacement{"[", "{[}"}};
    return text == "-" ? "--" : Replaced(std::string_view(text), numbers);
}

} // namespace host
