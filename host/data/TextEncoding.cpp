#include "host/data/TextEncoding.h"

#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <numeric>
#include <string_view>
#include <utility>

namespace host {

namespace {

using namespace std::string_view_literals;

/// An encoding by the name that ICU has for it.
struct Encoding
{
    const char* name;
    const char* shown;
    std::string_view mark = {};
};

constexpr Encoding UTF_16_LITTLE = {"UTF-16LE", "UTF-16", "\xFF\xFE"sv};
constexpr Encoding UTF_16_BIG = {"UTF-16BE", "UTF-16", "\xFE\xFF"sv};
constexpr Encoding WINDOWS = {"windows-1252", "Windows-1252 (Latin 1)"};
constexpr Encoding MACINTOSH = {"macintosh", "Mac Roman"};

/// A mark of UTF-32 starts as one of UTF-16, and so comes first.
constexpr Encoding MARKED[] = {{"UTF-32LE", "UTF-32", "\xFF\xFE\0\0"sv},
                               {"UTF-32BE", "UTF-32", "\0\0\xFE\xFF"sv},
                               UTF_16_LITTLE,
                               UTF_16_BIG};

constexpr std::string_view UTF_8_MARK = "\xEF\xBB\xBF"sv;

struct CloseConverter
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

[[noreturn]] void FailToConvert(const std::string& name, const Encoding& encoding)
{
    throw UnusableInput(fmt::format("{} is no text in UTF-8, and none in {} either: save it as CSV UTF-8.",
                                    name, encoding.shown));
}

std::string Converted(std::string_view bytes, const Encoding& encoding, const std::string& name)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, CloseConverter> converter(ucnv_open(encoding.name, &error));
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    if (U_FAILURE(error) || bytes.size() > INT32_MAX)
        throw std::bad_alloc();
    const icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter.get(),
                                  error);
    if (U_FAILURE(error) || text.isBogus())
        FailToConvert(name, encoding);
    std::string converted;
    return text.toUTF8String(converted);
}

std::size_t CountZeros(std::string_view bytes, std::size_t first)
{
    std::size_t count = 0;
    for (std::size_t i = first; i < bytes.size(); i += 2)
        count += bytes[i] == '\0' ? 1 : 0;
    return count;
}

/// The encoding of UTF-16 without mark, in which most characters of a table are ASCII.
const Encoding* UnmarkedUtf16(std::string_view bytes)
{
    const std::string_view start = bytes.substr(0, 4096);
    const std::size_t even = CountZeros(start, 0);
    const std::size_t odd = CountZeros(start, 1);
    const std::size_t enough = start.size() / 4; // half of the characters
    if (start.size() < 4 || std::max(even, odd) < enough || std::min(even, odd) > 0)
        return nullptr;
    return odd > 0 ? &UTF_16_LITTLE : &UTF_16_BIG;
}

/// What of a text is UTF-8.
struct Utf8Census
{
    std::size_t longCharacters = 0; ///< of several bytes
    std::size_t strangeBytes = 0;
    std::size_t firstStrange = 0; ///< its position
};

Utf8Census CensusOf(std::string_view bytes)
{
    Utf8Census census;
    const auto* const start = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t size = bytes.size();
    for (std::size_t i = 0; i < size;) {
        UChar32 character = 0;
        const std::size_t first = i;
        U8_NEXT(start, i, size, character);
        if (character < 0 && census.strangeBytes++ == 0)
            census.firstStrange = first;
        census.longCharacters += character >= 0x80 ? 1 : 0;
    }
    return census;
}

/// The bytes are joined, not tested one by one, because a compiler does that in vector registers.
bool IsAscii(std::string_view bytes)
{
    const unsigned joined = std::accumulate(bytes.begin(), bytes.end(), 0U, [](unsigned all, char c) {
        return all | static_cast<unsigned char>(c);
    });
    return (joined & 0x80U) == 0;
}

/// The sentence on bytes that are no UTF-8 among others that are.
std::string NoteOfStrangeBytes(std::string_view bytes, const Utf8Census& census)
{
    return fmt::format("Line {} of the data file has bytes that are no UTF-8, unlike the others of the file; "
                       "they are shown as \xEF\xBF\xBD.",
                       LineEndsIn(bytes.substr(0, census.firstStrange)) + 1);
}

std::string NoteOfConversion(const Encoding& encoding, bool isGuess)
{
    return fmt::format("The data file is no UTF-8; it is read as {}.{}", encoding.shown,
                       isGuess ? " If letters are wrong, save it as CSV UTF-8." : "");
}

/// Undefined bytes of Windows-1252, which ICU takes for control characters, mean that it is another encoding.
void RequireDefined(std::string_view bytes, const std::string& name)
{
    if (bytes.find_first_of("\x81\x8D\x8F\x90\x9D"sv) != std::string_view::npos)
        FailToConvert(name, WINDOWS);
}

DecodedText DecodeBytes(std::string_view bytes, const std::string& name)
{
    const bool hasMacLines =
        bytes.find('\r') != std::string_view::npos && bytes.find('\n') == std::string_view::npos;
    const Encoding& encoding = hasMacLines ? MACINTOSH : WINDOWS;
    if (!hasMacLines)
        RequireDefined(bytes, name);
    return {Converted(bytes, encoding, name), NoteOfConversion(encoding, true)};
}

} // namespace

DecodedText DecodeText(std::string bytes, const std::string& name)
{
    for (const Encoding& encoding : MARKED)
        if (std::string_view(bytes).starts_with(encoding.mark))
            return {Converted(std::string_view(bytes).substr(encoding.mark.size()), encoding, name),
                    NoteOfConversion(encoding, false)};
    if (const Encoding* const encoding = UnmarkedUtf16(bytes))
        return {Converted(bytes, *encoding, name), NoteOfConversion(*encoding, false)};
    const bool isMarked = bytes.starts_with(UTF_8_MARK);
    if (isMarked)
        bytes.erase(0, UTF_8_MARK.size());
    if (IsAscii(bytes))
        return {std::move(bytes), {}};
    const Utf8Census census = CensusOf(bytes);
    if (census.strangeBytes == 0)
        return {std::move(bytes), {}};
    if (isMarked || census.longCharacters > 0) {
        std::string note = NoteOfStrangeBytes(bytes, census);
        return {std::move(bytes), std::move(note)};
    }
    return DecodeBytes(bytes, name);
}

} // namespace host
