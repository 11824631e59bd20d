#include "host/data/TextEncoding.h"

#include "host/data/Encodings.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <unicode/unistr.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace host {

namespace {

DecodedText Converted(std::string_view bytes, const Encoding& encoding, const std::string& name)
{
    if (bytes.size() > INT32_MAX)
        throw UnusableInput(
            fmt::format("{} is text in {} of more than 2 GiB: only UTF-8 can be as large, which "
                        "'iconv -f {} -t UTF-8 FILE | ... -' makes.",
                        name, encoding.shown, encoding.name));
    const Converter converter = OpenConverter(encoding);
    UErrorCode error = U_ZERO_ERROR;
    const icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter.get(),
                                  error);
    if (U_FAILURE(error) || text.isBogus())
        FailToConvert(name, encoding);
    DecodedText decoded = {{}, NoteOfConversion(encoding)};
    text.toUTF8String(decoded.text);
    return decoded;
}

DecodedText DecodeBytes(std::string_view bytes, const std::string& name)
{
    const Encoding& encoding = ByteEncodingOf(HasMacLines(bytes));
    RequireDefined(bytes, encoding, name);
    return Converted(bytes, encoding, name);
}

} // namespace

DecodedText DecodeText(std::string bytes, const std::string& name)
{
    if (const Encoding* const wide = WideEncodingOf(bytes))
        return Converted(std::string_view(bytes).substr(wide->mark.size()), *wide, name);
    const bool isMarked = bytes.starts_with(UTF_8_MARK);
    if (isMarked)
        bytes.erase(0, UTF_8_MARK.size());
    if (IsAscii(bytes))
        return {std::move(bytes), {}};
    const Utf8Census census = CensusOf(bytes);
    if (census.strangeBytes == 0)
        return {std::move(bytes), {}};
    if (!isMarked && census.IsOtherEncoding())
        return DecodeBytes(bytes, name);
    const std::size_t line = LineEndsIn(std::string_view(bytes).substr(0, census.firstStrange)) + 1;
    return {std::move(bytes), NoteOfStrangeBytes(line)};
}

} // namespace host
