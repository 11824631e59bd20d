#pragma once

#include "host/report/Report.h"
#include "host/report/Warnings.h"
#include "host/run/RecordSummary.h"

#include <algorithm>
#include <string>
#include <vector>

namespace host {

// What the reports of all commands are made of.

/// What became of the records of the file at `dataPath`.
ReportSection RecordsSection(const std::string& dataPath, const RecordSummary& records);

/// Every warning with its code and a sentence.
ReportSection WarningsSection(const std::vector<ShownWarning>& warnings);

/// The preset with its settings, when there is one.
ReportSection PresetSection(const Options& options);

/// The sections that have something to show.
std::vector<ReportSection> WithoutEmpty(std::vector<ReportSection> sections);

/// A label as one line of text, whatever the field held.
std::string LabelText(std::string label);

/// Of a Q-profile interval that ends at 0.
inline constexpr const char* EMPTY_Q_PROFILE = "The effects vary less than sampling error alone makes "
                                               "likely, whatever tau² is: the Q-profile interval is "
                                               "empty, and given as [0, 0] by convention, even where the "
                                               "estimate is another.";

bool HasAnyValue(const std::vector<double>& values);

template <class ToText>
std::vector<std::string> TextsOf(const std::vector<double>& values, const ToText& toText)
{
    std::vector<std::string> texts(values.size());
    std::transform(values.begin(), values.end(), texts.begin(), toText);
    return texts;
}

} // namespace host
