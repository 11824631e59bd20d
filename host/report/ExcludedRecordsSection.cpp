#include "host/report/ExcludedRecordsSection.h"

#include "host/text/PlainText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace host {

namespace {

/// Reads "20 read, 3 excluded (2 missing value, 1 negative count), 17 used."
std::string WordingOfFlow(const RecordSummary& records)
{
    const std::vector<std::size_t> counts = records.CountsByReason();
    std::vector<std::string> reasons;
    reasons.reserve(counts.size());
    for (std::size_t i = 0; i < counts.size(); ++i)
        reasons.push_back(fmt::format("{} {}", counts[i], records.reasons[i]));
    return fmt::format("{} read, {} excluded ({}), {} used.", records.read, records.excluded.size(),
                       fmt::join(reasons, ", "), records.used.size());
}

} // namespace

std::string WordingOfRest(std::size_t count)
{
    if (count <= MOST_SHOWN_RECORDS)
        return {};
    return fmt::format("These are the first {} of {}; --json writes all.", MOST_SHOWN_RECORDS, count);
}

ReportSections ExcludedRecordsSection(const RecordSummary& records,
                                      const std::vector<std::string>& studyLabels, const RecordLines& lines)
{
    if (records.excluded.empty())
        return {};
    ReportColumn studies = {"Study", {}, true};
    ReportColumn numbers = {"Line", {}};
    ReportColumn reasons = {"Reason", {}, true};
    const std::size_t shown = std::min(records.excluded.size(), MOST_SHOWN_RECORDS);
    for (std::size_t i = 0; i < shown; ++i) {
        const ExcludedRecord& one = records.excluded[i];
        studies.cells.push_back(LabelText(studyLabels[static_cast<std::size_t>(one.record)]));
        numbers.cells.push_back(std::to_string(lines.Of(one.record)));
        reasons.cells.push_back(records.ReasonOf(one));
    }
    ReportSection section = {"Excluded records", {studies, numbers, reasons}, {WordingOfFlow(records)}};
    if (const std::string rest = WordingOfRest(records.excluded.size()); !rest.empty())
        section.sentences.insert(section.sentences.begin(), rest);
    return {section};
}

} // namespace host
