#include "host/Plots.h"

#include "host/BubblePlot.h"
#include "host/ForestPlot.h"
#include "host/FunnelPlot.h"
#include "host/GalbraithPlot.h"
#include "host/LabbePlot.h"
#include "host/ReportSource.h"

#include <utility>

namespace host {

std::vector<Picture> MakePictures(const Request& request, const Analysis& analysis)
{
    std::vector<Picture> pictures;
    if (analysis.Base().GetNonMissingStudyID().empty())
        return pictures;
    const ReportSource source(request, analysis);
    for (const auto make : {ForestPictures, FunnelPictures, GalbraithPictures, LabbePictures, BubblePictures})
        for (Picture& picture : make(source))
            pictures.push_back(std::move(picture));
    return pictures;
}

} // namespace host
