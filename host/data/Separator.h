#pragma once

#include <optional>
#include <string_view>

namespace host {

/// The character that separates the fields of a text.
struct FoundSeparator
{
    char character = ',';
    bool isGuess = false; ///< the header line has several, and rows fit more than one of them or none
};

/// The separator that a first line "sep=;" names, as Excel writes it; none without such a line.
std::optional<char> SeparatorLine(std::string_view text);

/// That line's, or else what the header line has outside of quotes: comma, semicolon or tab; a comma without
/// either. Of several, it is the one by which the next rows have as many fields as the header, and the most
/// frequent one where that does not decide.
FoundSeparator SeparatorOf(std::string_view text);

/// "semicolons".
const char* PluralOf(char separator);

} // namespace host
