#pragma once

namespace host {

/// What kind of file a picture is written as.
enum class PictureFormat
{
    SVG,
    PNG,
    PDF
};

} // namespace host
