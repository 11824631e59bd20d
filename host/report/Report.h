#pragma once

#include <string>
#include <vector>

namespace host {

/// A column of a table. Texts are aligned to the left, numbers to the right.
struct ReportColumn
{
    std::string header;
    std::vector<std::string> cells;
    bool isText = false;
};

/// A titled part of a report: a table, its columns of equal length, then sentences, then lines that stay as
/// they are; each may be empty.
struct ReportSection
{
    std::string title;
    std::vector<ReportColumn> table;
    std::vector<std::string> sentences;
    std::string verbatim = {};
};

using ReportSections = std::vector<ReportSection>;

/// The content of a report, independent of the format.
struct Report
{
    std::string title;
    ReportSections sections;
};

inline void Append(ReportSections& sections, const ReportSections& more)
{
    sections.insert(sections.end(), more.begin(), more.end());
}

} // namespace host
