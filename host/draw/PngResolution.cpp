#include "host/draw/PngResolution.h"

#include <isa-l/crc.h>

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace host {

namespace {

constexpr std::size_t END_OF_HEADER = 33; // the signature of 8 bytes, and the chunk IHDR of 25
constexpr double INCHES_A_METRE = 1 / 0.0254;
constexpr char IN_METRES = 1;

std::string BigEndian(std::uint32_t number)
{
    std::string bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

/// A part of a PNG file: length, name, content, checksum of name and content.
std::string Chunk(const std::string& name, const std::string& content)
{
    const std::string checked = name + content;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(checked.data());
    return BigEndian(static_cast<std::uint32_t>(content.size())) + checked +
           BigEndian(crc32_gzip_refl(0, bytes, checked.size()));
}

} // namespace

std::string WithResolution(const std::string& png, double pixelsAnInch)
{
    const std::string perMetre =
        BigEndian(static_cast<std::uint32_t>(std::lround(pixelsAnInch * INCHES_A_METRE)));
    return png.substr(0, END_OF_HEADER) + Chunk("pHYs", perMetre + perMetre + IN_METRES) +
           png.substr(END_OF_HEADER);
}

} // namespace host
