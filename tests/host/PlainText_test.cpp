#include "host/draw/FontCoverage.h"
#include "host/text/PlainText.h"

#include <gtest/gtest.h>

#include <string>

using namespace host;

namespace {

TEST(PlainText, IsOneLineOfCharacters)
{
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(PlainText("Łódź & 東京 <x>"), "Łódź & 東京 <x>");
    EXPECT_EQ(PlainText("a\nb\tc\x7F"
                        "d\xC2\x85"
                        "e\xE2\x80\xA8"
                        "f"),
              "a b c d e f");                                                        // NEL, line separator
    EXPECT_EQ(PlainText("M\xFCller"), "M" + replacement + "ller");                   // Latin-1
    EXPECT_EQ(PlainText("\xC0\xAF"), replacement + replacement);                     // overlong
    EXPECT_EQ(PlainText("\xEF\xBF\xBE\xF0\x9F\xBF\xBF"), replacement + replacement); // U+FFFE, U+1FFFF
    EXPECT_EQ(PlainText("\xE6\x9D"), replacement + replacement);                     // cut off
    EXPECT_EQ(PlainText(std::string("a\0b", 3)), "a b");
}

TEST(PlainText, AsksForNoCharacterThatNoFontHas)
{
    // The last character is unassigned, so that no font has it.
    EXPECT_EQ(DrawableText("Müller\n[1] \U000E0FFF"), "Müller [1] ?");
}

TEST(PlainText, KeepsStartAndEndOfLongTexts)
{
    EXPECT_EQ(ShortenedText("Smith 1990", 10), "Smith 1990");
    const std::string name(60, 'a');
    const std::string shortened = ShortenedText("Smith " + name + " 1990", 20);
    EXPECT_EQ(shortened.substr(0, 7), "Smith a");
    EXPECT_EQ(shortened.substr(shortened.size() - 5), " 1990");
    EXPECT_LE(TextWidth(shortened), 20);
    // Cut between characters, not within one.
    const std::string wide = ShortenedText("東京大学医学部附属病院の無作為化比較試験", 9);
    EXPECT_EQ(wide, PlainText(wide));
    EXPECT_EQ(wide, "東京大学医…較試験");
}

TEST(PlainText, NamesFilesHarmlessly)
{
    EXPECT_EQ(FileNamePart("../../etc/Passwd & Ünïcode--x"), "etc-passwd-n-code-x");
    EXPECT_EQ(FileNamePart("東京"), "");
    EXPECT_EQ(FileNamePart("latitude (°)"), "latitude");
}

} // namespace
