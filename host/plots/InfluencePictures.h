#pragma once

#include "host/draw/Picture.h"
#include "host/report/InfluenceTable.h"

#include <vector>

namespace host {

/// The influence picture, a panel for each diagnostic, and the Baujat plot; none for an empty table.
std::vector<Picture> InfluencePicturesOf(const InfluenceTable& table);

/// A panel for each diagnostic that has a value.
Picture InfluencePicture(const InfluenceTable& table);

Picture BaujatPicture(const InfluenceTable& table);

} // namespace host
