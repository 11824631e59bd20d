#include "host/report/RecordsSection.h"

#include "host/text/Exclusions.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

namespace {

ReportSection LeftOutSection(const RecordSummary& records, const std::vector<std::string>& studyLabels)
{
    ReportColumn numbers = {"Record", {}};
    ReportColumn studies = {"Study", {}, true};
    ReportColumn reasons = {"Reason", {}, true};
    for (std::size_t i = 0; i < records.excluded.size(); ++i) {
        const int record = records.excluded[i];
        numbers.cells.push_back(fmt::format("{}", record + 1));
        studies.cells.push_back(LabelText(studyLabels[static_cast<std::size_t>(record)]));
        reasons.cells.push_back(NameOf(EXCLUSIONS, static_cast<MAConst::EXCLUSION>(records.reasons[i])));
    }
    return {"Records left out", {numbers, studies, reasons}, {}};
}

} // namespace

ReportSections RecordsSection(const std::string& dataPath, const RecordSummary& records,
                              const std::vector<std::string>& studyLabels)
{
    ReportSections sections = {{"Records", {}, {}}};
    std::vector<std::string>& sentences = sections.front().sentences;
    sentences.push_back(fmt::format("{}: {} read, {} used, {} missing, {} invalid, {} dropped", dataPath,
                                    records.read, records.used.size(), records.missing, records.invalid,
                                    records.dropped));
    if (records.used.empty())
        sentences.push_back("No record could be used: there is nothing to analyse.");
    if (!records.excluded.empty())
        sections.push_back(LeftOutSection(records, studyLabels));
    return sections;
}

} // namespace host
