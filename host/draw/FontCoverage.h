#pragma once

#include <string>
#include <string_view>

namespace host {

/// The text with a question mark for each character that no installed font has. The terminals of gnuplot that
/// draw letters themselves fill the picture with the frame that stands for such a character.
std::string DrawableText(std::string_view text);

/// The distinct characters of the text that no installed font has.
std::u32string CharactersWithoutFont(std::string_view text);

} // namespace host
