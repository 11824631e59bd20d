#include "host/report/ConvertedStudies.h"
#include "host/report/RegressionSections.h"
#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/PlainText.h"

#include <algorithm>
#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// How the studies' values came from what was reported, as a column of a table.
struct ConversionColumn
{
    const char* header;
    std::vector<int> conversions; ///< one a study, or none
};

std::string WordingOf(int conversion)
{
    switch (static_cast<MAConst::CONVERSION>(conversion)) {
    case MAConst::CONVERSION_NONE:
        return NO_VALUE;
    case MAConst::CONVERSION_QUARTILES:
        return "median and quartiles";
    case MAConst::CONVERSION_EXTREMES:
        return "median, minimum and maximum";
    case MAConst::CONVERSION_FIVE_NUMBERS:
        return "median, quartiles, minimum and maximum";
    case MAConst::CONVERSION_INTERVAL:
        return "confidence interval";
    case MAConst::CONVERSION_P_VALUE:
        return "p-value";
    }
    return {};
}

std::vector<int> PositionsOfConverted(const std::vector<ConversionColumn>& columns, std::size_t studyCount)
{
    std::vector<int> converted;
    for (std::size_t study = 0; study < studyCount; ++study)
        if (std::any_of(columns.begin(), columns.end(), [study](const ConversionColumn& column) {
                return column.conversions[study] != MAConst::CONVERSION_NONE;
            }))
            converted.push_back(static_cast<int>(study));
    return converted;
}

template <class Value>
std::vector<Value> Picked(const std::vector<Value>& values, const std::vector<int>& positions)
{
    std::vector<Value> picked;
    picked.reserve(positions.size());
    for (const int position : positions)
        picked.push_back(values[static_cast<std::size_t>(position)]);
    return picked;
}

ReportSections SectionOf(const StudyNotes& notes, const std::vector<std::string>& labels,
                         const std::vector<ConversionColumn>& columns, const std::string& sentence)
{
    if (columns.front().conversions.empty())
        return {};
    const std::vector<int> converted = PositionsOfConverted(columns, notes.records.size());
    if (converted.empty())
        return {};
    ReportSection section = {"Converted studies",
                             {{"Study", LabelTexts(labels, Picked(notes.records, converted)), true}},
                             {sentence}};
    for (const ConversionColumn& column : columns) {
        section.table.push_back({column.header, {}, true});
        for (const int conversion : Picked(column.conversions, converted))
            section.table.back().cells.push_back(WordingOf(conversion));
    }
    return {section};
}

} // namespace

ReportSections ConvertedStudies(const StudyNotes& notes, const std::vector<std::string>& labels)
{
    ReportSections sections = SectionOf(notes, labels, {{"Standard error from", notes.effectConversions}},
                                        "These studies do not report a variance or standard error.");
    Append(sections, SectionOf(notes, labels,
                               {{"Treatment group", notes.treatmentConversions},
                                {"Control group", notes.controlConversions}},
                               "Means are estimated after Luo et al. (2018) and standard deviations after "
                               "Wan et al. (2014) where a study does not report both."));
    return sections;
}

ReportSections ConvertedStudiesSection(const AnalysisData& data)
{
    return ConvertedStudies(StudyNotesOf(data.base), data.request.studyLabels);
}

ReportSections RegressionConvertedStudiesSection(const RegressionData& data)
{
    const RegressionRequest& request = data.request;
    return request.rawEffects ? ConvertedStudies(request.rawEffects->notes, request.studyLabels)
                              : ReportSections();
}

} // namespace host
