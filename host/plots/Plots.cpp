#include "host/plots/Plots.h"

#include "host/plots/BubblePlot.h"
#include "host/plots/ForestPlot.h"
#include "host/plots/FunnelPlot.h"
#include "host/plots/GalbraithPlot.h"
#include "host/plots/LabbePlot.h"
#include "host/report/AnalysisData.h"

#include <utility>

namespace host {

std::vector<Picture> MakePictures(const AnalysisRequest& request, const Analysis& analysis)
{
    std::vector<Picture> pictures;
    if (analysis.Base().GetNonMissingStudyID().empty())
        return pictures;
    const AnalysisData data(request, analysis);
    for (const auto make : {ForestPictures, FunnelPictures, GalbraithPictures, LabbePictures, BubblePictures})
        for (Picture& picture : make(data))
            pictures.push_back(std::move(picture));
    return pictures;
}

} // namespace host
