#pragma once

#include "host/text/Choice.h"

#include <array>

namespace host {

/// The kind of file that a picture is written as.
enum class PictureFormat
{
    SVG,
    PNG,
    PDF
};

/// The names are the extensions of the files as well.
inline constexpr std::array PICTURE_FORMAT_CHOICES{
    MAChoice{"svg", PictureFormat::SVG},
    MAChoice{"png", PictureFormat::PNG},
    MAChoice{"pdf", PictureFormat::PDF},
};
static_assert(HasEachEnumerator<PICTURE_FORMAT_CHOICES>());

} // namespace host
