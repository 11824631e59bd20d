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

} // namespace host
