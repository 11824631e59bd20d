#pragma once

#include "host/text/CompactTexts.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The text as one line of valid UTF-8 that may stand in XML and HTML: control characters become spaces,
/// bytes that are no UTF-8 and code points that are no characters become the replacement character.
std::string PlainText(std::string_view text);

/// The characters of the text as PlainText() makes it, with accents joined to their letters where Unicode has
/// one character for both (normalisation form C).
std::u32string Composed(std::string_view text);

/// A character in UTF-8.
std::string TextOf(char32_t character);

/// A label as one line of text, whatever the field held; an empty one as a missing value.
std::string LabelText(std::string label);
/// Those at these positions.
std::vector<std::string> LabelTexts(const std::vector<std::string>& labels,
                                    const std::vector<int>& positions);

/// The same for the columns of tables.
CompactTexts LabelList(const std::vector<std::string>& labels, const std::vector<int>& positions);

/// The text as PlainText() makes it, with `replacement` for each character that is unwanted.
std::string WithoutCharacters(std::string_view text, char replacement,
                              const std::function<bool(char32_t)>& isUnwanted);

/// Columns of a terminal that the text takes: two for a wide character, such as those of Chinese, and none
/// for one that combines with the character before it.
std::size_t DisplayWidth(std::string_view text);

/// Upper bound of the text's width in a sans-serif font, in units of the font's size.
double TextWidth(std::string_view text, bool isBold = false);

/// The text, or its start and its end about an ellipsis where it is wider than `limit`.
std::string ShortenedText(std::string_view text, double limit);

/// The text in lines that are no wider than `limit`. Lines end at blanks, behind hyphens and between wide
/// characters, such as those of Chinese; a longer word is cut. There is at least one line.
std::vector<std::string> WrappedText(std::string_view text, double limit);

/// A part of a file name that resembles the text: lower-case ASCII letters, digits and single dashes. Empty
/// when the text has no such characters.
std::string FileNamePart(std::string_view text);

} // namespace host
