#include "host/report/ReportParts.h"

#include "host/cli/Presets.h"
#include "host/text/NumberText.h"

#include <fmt/format.h>

namespace host {

ReportSection RecordsSection(const std::string& dataPath, const RecordSummary& records)
{
    ReportSection section = {"Records", {}, {}};
    section.sentences.push_back(fmt::format("{}: {} read, {} used, {} missing, {} invalid, {} dropped",
                                            dataPath, records.read, records.used.size(), records.missing,
                                            records.invalid, records.dropped));
    if (records.used.empty())
        section.sentences.push_back("No record could be used: there is nothing to analyse.");
    return section;
}

ReportSection WarningsSection(const std::vector<ShownWarning>& warnings)
{
    ReportSection section = {"Warnings", {}, {}};
    for (const ShownWarning& warning : warnings)
        section.sentences.push_back(fmt::format("{}: {}", warning.code, warning.sentence));
    return section;
}

ReportSection PresetSection(const Options& options)
{
    ReportSection section = {"Preset", {}, {}};
    if (options.preset)
        section.sentences.push_back(PresetSentence(options));
    return section;
}

std::vector<ReportSection> WithoutEmpty(std::vector<ReportSection> sections)
{
    std::erase_if(sections, [](const ReportSection& section) {
        return section.table.empty() && section.sentences.empty();
    });
    return sections;
}

std::string LabelText(std::string label)
{
    std::replace_if(
        label.begin(), label.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return label.empty() ? NO_VALUE : label;
}

bool HasAnyValue(const std::vector<double>& values)
{
    return std::any_of(values.begin(), values.end(), HasValue);
}

} // namespace host
