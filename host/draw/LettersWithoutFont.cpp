#include "host/draw/LettersWithoutFont.h"

#include "host/draw/FontCoverage.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>

namespace host {

namespace {

struct FontPackage
{
    const char* name; ///< of Debian
    char32_t first;   ///< characters that its fonts have
    char32_t last;
};

/// By the blocks of Unicode. A character in none of them is in one of a small script or of symbols.
constexpr FontPackage FONT_PACKAGES[] = {
    {"fonts-noto-cjk", 0x1100, 0x11FF},           // Hangul Jamo
    {"fonts-noto-color-emoji", 0x2600, 0x27BF},   // symbols and dingbats
    {"fonts-noto-cjk", 0x2E80, 0x9FFF},           // radicals, kana, Han
    {"fonts-noto-cjk", 0xA960, 0xA97F},           // Hangul
    {"fonts-noto-cjk", 0xAC00, 0xD7FF},           // Hangul
    {"fonts-noto-cjk", 0xF900, 0xFAFF},           // Han for compatibility
    {"fonts-noto-cjk", 0xFE30, 0xFE4F},           // upright forms
    {"fonts-noto-cjk", 0xFF00, 0xFFEF},           // wide and narrow forms
    {"fonts-noto-color-emoji", 0x1F000, 0x1FAFF}, // emoji
    {"fonts-noto-cjk", 0x20000, 0x3FFFF},         // more Han
};
constexpr const char* OTHER_PACKAGE = "fonts-noto-core";

const char* PackageOf(char32_t character)
{
    const auto* const found =
        std::find_if(std::begin(FONT_PACKAGES), std::end(FONT_PACKAGES), [=](const FontPackage& package) {
            return character >= package.first && character <= package.last;
        });
    return found == std::end(FONT_PACKAGES) ? OTHER_PACKAGE : found->name;
}

std::string TextsIn(const Axis& axis)
{
    std::string texts = axis.title;
    for (const Tick& tick : axis.ticks)
        texts += tick.text;
    return texts;
}

std::string TextsIn(const Picture& picture)
{
    std::string texts = TextsIn(picture.x) + TextsIn(picture.y);
    for (const PictureText& text : picture.texts)
        texts += text.text;
    for (const Layer& layer : picture.layers)
        texts += layer.legend;
    for (const Picture& panel : picture.panels)
        texts += TextsIn(panel);
    return texts;
}

std::string Sentence(const std::string& package, const std::u32string& letters)
{
    constexpr std::size_t MOST_NAMED = 12;
    std::string named;
    for (const char32_t letter : letters.substr(0, MOST_NAMED))
        named += TextOf(letter);
    return fmt::format("No installed font has {} (U+{:04X}{}), which the pictures show as question marks; on "
                       "Debian, the package {} has such letters.",
                       named + (letters.size() > MOST_NAMED ? "…" : ""),
                       static_cast<std::uint32_t>(letters.front()), letters.size() > 1 ? " ..." : "",
                       package);
}

} // namespace

std::vector<std::string> NotesOnFonts(const std::vector<Picture>& pictures)
{
    std::string texts;
    for (const Picture& picture : pictures)
        texts += TextsIn(picture);
    std::map<std::string, std::u32string> letters;
    for (const char32_t letter : CharactersWithoutFont(texts))
        letters[PackageOf(letter)] += letter;
    std::vector<std::string> notes;
    notes.reserve(letters.size());
    for (const auto& [package, missing] : letters)
        notes.push_back(Sentence(package, missing));
    return notes;
}

} // namespace host
