#include "host/report/RecordsSection.h"

#include "host/report/ExcludedRecordsSection.h"

#include <fmt/format.h>

namespace host {

ReportSections RecordsSection(const std::string& dataPath, const RecordSummary& records,
                              const std::vector<std::string>& studyLabels, const RecordLines& lines)
{
    ReportSections sections = {{"Records", {}, {}}};
    std::vector<std::string>& sentences = sections.front().sentences;
    sentences.push_back(fmt::format("{}: {} read, {} used, {} missing, {} invalid, {} dropped", dataPath,
                                    records.read, records.used.size(), records.missing, records.invalid,
                                    records.dropped));
    if (records.used.empty())
        sentences.push_back("No record could be used: there is nothing to analyse.");
    Append(sections, ExcludedRecordsSection(records, studyLabels, lines));
    return sections;
}

} // namespace host
