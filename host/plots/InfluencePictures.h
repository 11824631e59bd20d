#pragma once

#include "host/draw/Picture.h"
#include "host/report/InfluenceTable.h"

#include <vector>

namespace host {

/// The influence picture, a panel for each diagnostic; of a meta-regression that of its coefficients; and the
/// Baujat plot. None for an empty table.
std::vector<Picture> InfluencePicturesOf(const InfluenceTable& table);

/// A panel for each diagnostic that has a value.
Picture InfluencePicture(const InfluenceTable& table);

/// A panel for each coefficient of a meta-regression.
Picture CoefficientChangePicture(const InfluenceTable& table);

/// Whether a study has both coordinates of the Baujat plot.
bool HasBaujatPoint(const InfluenceTable& table);

/// Needs a study that has both coordinates.
Picture BaujatPicture(const InfluenceTable& table);

} // namespace host
