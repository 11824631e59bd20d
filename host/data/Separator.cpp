#include "host/data/Separator.h"

#include "host/text/AsciiCase.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace host {

namespace {

/// In the order of preference: in text, tabs are the rarest.
constexpr std::array<char, 3> SEPARATORS = {'\t', ';', ','};

using Counts = std::array<std::size_t, SEPARATORS.size()>;

/// How often each separator occurs outside of quotes in the next row that is not empty. Removes the row.
Counts TakeCounts(std::string_view& text)
{
    Counts counts{};
    bool isQuoted = false;
    bool isEmpty = true;
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        const bool endsLine = c == '\n' || c == '\r';
        if (endsLine && !isQuoted && !isEmpty)
            break;
        isEmpty = isEmpty && endsLine;
        isQuoted = isQuoted != (c == '"');
        for (std::size_t k = 0; k < SEPARATORS.size() && !isQuoted; ++k)
            counts[k] += c == SEPARATORS[k] ? 1 : 0;
    }
    text.remove_prefix(i);
    return counts;
}

/// Keeps the separators by which each of the next rows has as many fields as the header.
void KeepFitting(std::vector<std::size_t>& candidates, const Counts& header, std::string_view rows)
{
    constexpr int MOST_ROWS = 20;
    std::vector<std::size_t> fitting = candidates;
    for (int row = 0; row < MOST_ROWS && !rows.empty(); ++row) {
        const Counts counts = TakeCounts(rows);
        const bool isEnd = rows.empty() && counts == Counts{};
        if (!isEnd)
            std::erase_if(fitting, [&](std::size_t k) { return counts[k] != header[k]; });
    }
    if (!fitting.empty())
        candidates = fitting;
}

} // namespace

std::optional<char> SeparatorLine(std::string_view text)
{
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    if (line.size() != 5 || !EqualInAnyCase(line.substr(0, 4), "sep="))
        return std::nullopt;
    const bool isKnown = std::find(SEPARATORS.begin(), SEPARATORS.end(), line[4]) != SEPARATORS.end();
    return isKnown ? std::optional(line[4]) : std::nullopt;
}

FoundSeparator SeparatorOf(std::string_view text)
{
    if (const std::optional<char> named = SeparatorLine(text))
        return {*named, true};
    const Counts header = TakeCounts(text);
    std::vector<std::size_t> candidates;
    for (std::size_t k = 0; k < SEPARATORS.size(); ++k)
        if (header[k] > 0)
            candidates.push_back(k);
    if (candidates.empty())
        return {};
    if (candidates.size() > 1)
        KeepFitting(candidates, header, text);
    const std::size_t best =
        *std::max_element(candidates.begin(), candidates.end(),
                          [&](std::size_t one, std::size_t other) { return header[one] < header[other]; });
    return {SEPARATORS[best], true, candidates.size() > 1};
}

const char* PluralOf(char separator)
{
    return separator == '\t'  ? "tabs"
           : separator == ';' ? "semicolons"
           : separator == ' ' ? "blanks"
                              : "commas";
}

void RequireSeparator(std::string_view text, char separator, const std::string& name)
{
    const FoundSeparator found = SeparatorOf(text);
    const std::string_view start = text.substr(std::min(text.find_first_not_of("\r\n"), text.size()));
    const std::string_view header = start.substr(0, start.find_first_of("\r\n"));
    const bool has =
        header.find_first_of(separator == ' ' ? std::string(" \t") : std::string(1, separator)) !=
        std::string_view::npos;
    if (found.isThere && !has)
        throw UnusableInput(
            fmt::format("{} is separated by {}, and its header line has no {}: --separator does not "
                        "fit it.",
                        name, PluralOf(found.character), PluralOf(separator)));
}

std::string NoteOfGuess(char separator)
{
    return fmt::format(
        "The header line of the data file has several separators; the file is read as separated "
        "by {}. --separator sets another.",
        PluralOf(separator));
}

} // namespace host
