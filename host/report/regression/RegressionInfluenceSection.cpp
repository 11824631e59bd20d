#include "host/report/InfluenceTable.h"
#include "host/report/RegressionSections.h"

namespace host {

ReportSections RegressionInfluenceSection(const RegressionData& data)
{
    return SectionsOf(InfluenceTableOf(data));
}

} // namespace host
