#include "host/draw/FontCoverage.h"

#include "host/text/PlainText.h"

#include <fontconfig/fontconfig.h>

#include <memory>

namespace host {

namespace {

struct DestroyCharSet
{
    void operator()(FcCharSet* characters) const { FcCharSetDestroy(characters); }
};
using CharSet = std::unique_ptr<FcCharSet, DestroyCharSet>;

/// The installed fonts. Fontconfig is initialised while the list exists.
class FontList
{
public:
    FontList() : fonts_(FcInit() != FcFalse ? FcConfigGetFonts(nullptr, FcSetSystem) : nullptr) {}
    ~FontList() { FcFini(); }
    FontList(const FontList&) = delete;
    FontList& operator=(const FontList&) = delete;

    const FcFontSet* Fonts() const { return fonts_; } ///< null when they cannot be listed

private:
    const FcFontSet* fonts_;
};

/// Every character of every installed font; null when the fonts cannot be listed.
CharSet CharactersOfAllFonts()
{
    CharSet all(FcCharSetCreate());
    const FontList list;
    const FcFontSet* const fonts = list.Fonts();
    if (!all || !fonts)
        return nullptr;
    for (int i = 0; i < fonts->nfont; ++i) {
        FcCharSet* ofFont = nullptr; // owned by the font
        FcBool hasGrown = FcFalse;
        if (FcPatternGetCharSet(fonts->fonts[i], FC_CHARSET, 0, &ofFont) == FcResultMatch)
            FcCharSetMerge(all.get(), ofFont, &hasGrown);
    }
    return all;
}

/// Whether an installed font has it; true of all when the fonts cannot be listed.
bool HasFont(char32_t character)
{
    static const CharSet characters = CharactersOfAllFonts();
    return !characters || FcCharSetHasChar(characters.get(), character) != FcFalse;
}

} // namespace

std::string DrawableText(std::string_view text)
{
    return WithoutCharacters(text, '?', [](char32_t character) { return !HasFont(character); });
}

std::u32string CharactersWithoutFont(std::string_view text)
{
    std::u32string missing;
    WithoutCharacters(text, '?', [&missing](char32_t character) {
        if (!HasFont(character) && missing.find(character) == std::u32string::npos)
            missing += character;
        return false;
    });
    return missing;
}

} // namespace host
