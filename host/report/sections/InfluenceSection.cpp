#include "host/report/InfluenceTable.h"
#include "host/report/Sections.h"

namespace host {

ReportSections InfluenceSection(const AnalysisData& data)
{
    return SectionsOf(InfluenceTableOf(data));
}

} // namespace host
