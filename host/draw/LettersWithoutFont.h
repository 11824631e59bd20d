#pragma once

#include "host/draw/Picture.h"

#include <string>
#include <vector>

namespace host {

/// A sentence for each package of fonts that would have letters of the pictures which no installed font has.
/// The sentence names the first few of them.
std::vector<std::string> NotesOnFonts(const std::vector<Picture>& pictures);

} // namespace host
