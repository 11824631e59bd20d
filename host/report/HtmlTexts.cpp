#include "host/report/HtmlTexts.h"

#include "host/text/NumberText.h"
#include "host/text/PlainText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace host {

namespace {

constexpr std::string_view OPTION_LETTERS = "abcdefghijklmnopqrstuvwxyz0123456789-";

/// The end of the option whose name begins at `start`; `start` where none does.
std::size_t EndOfOption(const std::string& text, std::size_t start)
{
    const bool isBehindBlank = start == 0 || text[start - 1] == ' ' || text[start - 1] == '(';
    if (!isBehindBlank || text.compare(start, 2, "--") != 0)
        return start;
    return std::min(text.find_first_not_of(OPTION_LETTERS, start), text.size());
}

} // namespace

std::string HtmlEscaped(const std::string& text)
{
    std::string escaped;
    for (const char c : PlainText(text)) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

std::string HtmlText(const std::string& text)
{
    const std::string escaped = HtmlEscaped(text);
    std::string html;
    for (std::size_t i = 0; i < escaped.size();) {
        const std::size_t end = EndOfOption(escaped, i);
        if (end == i)
            html += escaped[i++];
        else
            html += "<span class=\"option\">" + escaped.substr(i, end - i) + "</span>";
        i = std::max(i, end);
    }
    return html;
}

std::string HtmlNumber(const std::string& text)
{
    const std::string escaped = HtmlEscaped(text);
    std::string html;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        const bool isMinus = escaped[i] == '-' && i + 1 < escaped.size() && escaped[i + 1] != ' ';
        html += isMinus ? WithMinusSign("-") : escaped.substr(i, 1);
    }
    return html;
}

} // namespace host
