#pragma once

#include <unicode/ucnv.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace host {

/// An encoding by the name that ICU has for it.
struct Encoding
{
    const char* name;
    const char* shown;
    std::string_view mark = {}; ///< byte-order mark
};

inline constexpr std::string_view UTF_8_MARK = "\xEF\xBB\xBF";

/// UTF-16 or UTF-32: by the byte-order mark with which the text starts, or UTF-16 by the zero bytes of its
/// ASCII characters. Null for another text.
const Encoding* WideEncodingOf(std::string_view start);

/// Whether lines end in CR alone, as on old Macs: most ends of lines are. A few others may be in quoted
/// fields, or have been added by another program.
bool HasMacLines(std::string_view bytes);

/// The encoding of bytes that are no UTF-8: Windows-1252, of which Latin-1 is a part, or Mac Roman, which the
/// programs write that end lines as old Macs do.
const Encoding& ByteEncodingOf(bool hasMacLines);

/// What of a text is UTF-8.
struct Utf8Census
{
    std::size_t longCharacters = 0; ///< of several bytes
    std::size_t strangeBytes = 0;
    std::size_t firstStrange = 0; ///< its position

    /// Whether the bytes are of another encoding. A text that is UTF-8 but for a few bytes is not, because
    /// a second conversion would spoil the others.
    bool IsOtherEncoding() const { return strangeBytes > 0 && longCharacters == 0; }
};

Utf8Census CensusOf(std::string_view bytes);

bool IsAscii(std::string_view bytes);

/// The sentence on bytes that are no UTF-8 among others that are.
std::string NoteOfStrangeBytes(std::size_t line);

/// The sentence on a text that is converted.
std::string NoteOfConversion(const Encoding& encoding);

/// Throws UnusableInput for bytes that the encoding does not define.
void RequireDefined(std::string_view bytes, const Encoding& encoding, const std::string& name);

[[noreturn]] void FailToConvert(const std::string& name, const Encoding& encoding);

struct CloseConverter
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

/// A converter that stops at bytes that the encoding does not have.
Converter OpenConverter(const Encoding& encoding);

} // namespace host
