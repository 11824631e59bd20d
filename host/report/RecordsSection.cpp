#include "host/report/RecordsSection.h"

#include <fmt/format.h>

namespace host {

ReportSections RecordsSection(const std::string& dataPath, const RecordSummary& records)
{
    ReportSection section = {"Records", {}, {}};
    section.sentences.push_back(fmt::format("{}: {} read, {} used, {} missing, {} invalid, {} dropped",
                                            dataPath, records.read, records.used.size(), records.missing,
                                            records.invalid, records.dropped));
    if (records.used.empty())
        section.sentences.push_back("No record could be used: there is nothing to analyse.");
    return {section};
}

} // namespace host
