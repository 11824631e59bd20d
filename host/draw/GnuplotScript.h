#pragma once

#include "host/draw/DrawingMedium.h"
#include "host/draw/Picture.h"

#include <string>

namespace host {

/// The picture as a script for gnuplot that writes the file to standard output. Texts are data in it, never
/// commands and never markup. Throws DrawingFailure when no file of the format can hold it.
std::string GnuplotScript(const Picture& picture, const DrawingMedium& medium);

} // namespace host
