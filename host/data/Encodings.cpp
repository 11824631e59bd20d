#include "host/data/Encodings.h"

#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>

namespace host {

namespace {

using namespace std::string_view_literals;

constexpr Encoding UTF_16_LITTLE = {"UTF-16LE", "UTF-16", "\xFF\xFE"sv};
constexpr Encoding UTF_16_BIG = {"UTF-16BE", "UTF-16", "\xFE\xFF"sv};
constexpr Encoding UTF_16_LITTLE_UNMARKED = {"UTF-16LE", "UTF-16"};
constexpr Encoding UTF_16_BIG_UNMARKED = {"UTF-16BE", "UTF-16"};
constexpr Encoding WINDOWS = {"windows-1252", "Windows-1252 (Latin 1)"};
constexpr Encoding MACINTOSH = {"macintosh", "Mac Roman"};

/// A mark of UTF-32 starts as one of UTF-16, and so comes first.
constexpr Encoding MARKED[] = {{"UTF-32LE", "UTF-32", "\xFF\xFE\0\0"sv},
                               {"UTF-32BE", "UTF-32", "\0\0\xFE\xFF"sv},
                               UTF_16_LITTLE,
                               UTF_16_BIG};

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
    return odd > 0 ? &UTF_16_LITTLE_UNMARKED : &UTF_16_BIG_UNMARKED;
}

bool IsByteEncoding(const Encoding& encoding)
{
    return &encoding == &WINDOWS || &encoding == &MACINTOSH;
}

} // namespace

const Encoding* WideEncodingOf(std::string_view start)
{
    for (const Encoding& encoding : MARKED)
        if (start.starts_with(encoding.mark))
            return &encoding;
    return UnmarkedUtf16(start);
}

bool HasMacLines(std::string_view bytes)
{
    std::size_t returns = 0;
    for (std::size_t at = bytes.find('\r'); at != std::string_view::npos; at = bytes.find('\r', at + 1))
        returns += bytes.substr(at + 1, 1) == "\n" ? 0 : 1;
    return returns > 0 && returns > static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
}

const Encoding& ByteEncodingOf(bool hasMacLines)
{
    return hasMacLines ? MACINTOSH : WINDOWS;
}

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

/// Eight bytes at a time are joined, not tested one by one, because a compiler does that in vector registers.
bool IsAscii(std::string_view bytes)
{
    constexpr std::uint64_t HIGH_BITS = 0x8080808080808080U;
    std::uint64_t joined = 0;
    for (; bytes.size() >= sizeof joined; bytes.remove_prefix(sizeof joined)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), sizeof word);
        joined |= word;
    }
    for (const char c : bytes)
        joined |= static_cast<unsigned char>(c);
    return (joined & HIGH_BITS) == 0;
}

std::string NoteOfStrangeBytes(std::size_t line)
{
    return fmt::format("Line {} of the data file has bytes that are no UTF-8, unlike the others of the file; "
                       "they are shown as \xEF\xBF\xBD.",
                       line);
}

std::string NoteOfConversion(const Encoding& encoding)
{
    return fmt::format("The data file is no UTF-8; it is read as {}.{}", encoding.shown,
                       IsByteEncoding(encoding) ? " If letters are wrong, save it as CSV UTF-8." : "");
}

/// Undefined bytes of Windows-1252, which ICU takes for control characters, mean that it is another encoding.
void RequireDefined(std::string_view bytes, const Encoding& encoding, const std::string& name)
{
    if (&encoding == &WINDOWS && bytes.find_first_of("\x81\x8D\x8F\x90\x9D"sv) != std::string_view::npos)
        FailToConvert(name, encoding);
}

void FailToConvert(const std::string& name, const Encoding& encoding)
{
    throw UnusableInput(fmt::format("{} is no text in UTF-8, and none in {} either: save it as CSV UTF-8.",
                                    name, encoding.shown));
}

Converter OpenConverter(const Encoding& encoding)
{
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(encoding.name, &error));
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    if (U_FAILURE(error))
        throw std::bad_alloc();
    return converter;
}

} // namespace host
