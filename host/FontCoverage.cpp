#include "host/FontCoverage.h"

#include "host/PlainText.h"

#include <fontconfig/fontconfig.h>

#include <memory>

namespace host {

namespace {

struct DestroyCharSet
{
    void operator()(FcCharSet* characters) const { FcCharSetDestroy(characters); }
};
using CharSet = std::unique_ptr<FcCharSet, DestroyCharSet>;

/// Every character of every installed font; null when the fonts cannot be listed.
CharSet CharactersOfAllFonts()
{
    CharSet all(FcCharSetCreate());
    const FcFontSet* const fonts = FcInit() != FcFalse ? FcConfigGetFonts(nullptr, FcSetSystem) : nullptr;
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

} // namespace

std::string DrawableText(std::string_view text)
{
    static const CharSet characters = CharactersOfAllFonts();
    return WithoutCharacters(text, '?', [](char32_t character) {
        return characters && FcCharSetHasChar(characters.get(), character) == FcFalse;
    });
}

} // namespace host
