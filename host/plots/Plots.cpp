#include "host/plots/Plots.h"

#include "host/plots/PictureMakers.h"
#include "host/plots/PlotGroups.h"
#include "host/plots/VisibleMarks.h"
#include "host/report/AnalysisData.h"

#include <utility>

namespace host {

std::vector<Picture> MakePictures(const AnalysisRequest& request, const Analysis& analysis)
{
    std::vector<Picture> pictures;
    if (analysis.Base().GetNonMissingStudyID().empty())
        return pictures;
    const AnalysisData data(request, analysis);
    for (PictureMaker* const make : PICTURE_MAKERS)
        for (Picture& picture : make(data))
            pictures.push_back(WithVisibleMarks(std::move(picture)));
    pictures.front().description += SentenceOfGroupsWithoutPlots(data);
    return pictures;
}

} // namespace host
