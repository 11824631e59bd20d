#include "host/report/Sections.h"

namespace host {

/// The library gives contours by their extent at one standard error. Only over the standard error is a
/// contour a line. So it is with the line of the small-study test.
ReportSections FunnelPlotSection(const AnalysisData& data)
{
    const bool wantsContours = data.settings.GetFunnelConTourTesType() != MAConst::CONTOUR_NONE;
    if (!wantsContours || data.settings.GetFunnelYType() == MAConst::FUNNEL_STD_ERROR)
        return {};
    return {
        {"Funnel plot", {}, {"Its picture has no contours: they are drawn over the standard error alone."}}};
}

} // namespace host
