#pragma once

#include "host/RecordUse.h"
#include "host/Report.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <algorithm>
#include <string>
#include <vector>

namespace host {

// What the reports of all commands are made of.

/// What became of the records of the file at `dataPath`.
ReportSection RecordsSection(const std::string& dataPath, const RecordUse& records);

/// Every warning with its code and a sentence.
ReportSection WarningsSection(const std::vector<KXStatus>& warnings);

/// The sections that have something to show.
std::vector<ReportSection> WithoutEmpty(std::vector<ReportSection> sections);

/// A label as one line of text, whatever the field held.
std::string LabelText(std::string label);

bool HasAnyValue(const std::vector<double>& values);

template <class ToText>
std::vector<std::string> TextsOf(const std::vector<double>& values, const ToText& toText)
{
    std::vector<std::string> texts(values.size());
    std::transform(values.begin(), values.end(), texts.begin(), toText);
    return texts;
}

} // namespace host
