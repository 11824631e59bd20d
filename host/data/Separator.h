#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// The character that separates the fields of a text.
struct FoundSeparator
{
    char character = ',';
    bool isThere = false; ///< whether the header line has it, or a line before names it
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

/// Throws UnusableInput when the header line of the file `name` lacks the separator that an option sets, and
/// has another.
void RequireSeparator(std::string_view text, char separator, const std::string& name);

/// The sentence on a guess.
std::string NoteOfGuess(char separator);

} // namespace host
