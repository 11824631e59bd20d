#pragma once

#include <string>

namespace host {

/// A text in UTF-8.
struct DecodedText
{
    std::string text; ///< without byte-order mark
    std::string note; ///< a sentence on the encoding where that is another or a guess; else empty
};

/// Converts the bytes of a text file into UTF-8. A byte-order mark says that they are UTF-8, UTF-16 or
/// UTF-32; without one, UTF-16 is known by the zero bytes of its ASCII characters. Other bytes are UTF-8, or
/// else Windows-1252, of which Latin-1 is a part; with the line ends of old Macs (mostly CR alone) Mac Roman,
/// which these programs write. Bytes that are UTF-8 but for a few stay as they are, because a second
/// conversion would spoil the others. Throws UnusableInput, which calls the file `name`, for bytes that the
/// encoding does not have.
DecodedText DecodeText(std::string bytes, const std::string& name);

} // namespace host
