#pragma once

#include "host/draw/Picture.h"
#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

/// Makes the pictures of one kind of plot: none when the analysis has no coordinates for it.
using PictureMaker = std::vector<Picture>(const AnalysisData& data);

/// The forest plot, and that of the cumulative analysis if there is one.
PictureMaker ForestPictures;

/// Funnel plots of all studies, with the imputed ones of trim-and-fill and the line of the small-study test,
/// and of each group.
PictureMaker FunnelPictures;

/// Galbraith plots of all studies and of each group.
PictureMaker GalbraithPictures;

/// L'Abbé plots of all studies, or of each group where there are groups.
PictureMaker LabbePictures;

/// A bubble plot of each covariate whose regression could be fitted.
PictureMaker BubblePictures;

/// The influence picture and the Baujat plot.
PictureMaker InfluencePictures;

/// A forest plot of the models without each study.
PictureMaker LeaveOneOutPictures;

/// Drapery plots of all studies and of each group, when they are asked for.
PictureMaker DraperyPictures;

/// The plots in the order of the page.
inline constexpr PictureMaker* PICTURE_MAKERS[] = {ForestPictures,      FunnelPictures, GalbraithPictures,
                                                   LabbePictures,       BubblePictures, InfluencePictures,
                                                   LeaveOneOutPictures, DraperyPictures};

} // namespace host
