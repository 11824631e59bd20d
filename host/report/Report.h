#pragma once

#include "host/text/CompactTexts.h"

#include <iterator>
#include <string>
#include <vector>

namespace host {

/// A column of a table. Texts are aligned to the left, numbers to the right.
struct ReportColumn
{
    std::string header;
    CompactTexts cells;
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

/// Moves, because the table of a million studies is large.
inline void Append(ReportSections& sections, ReportSections more)
{
    sections.insert(sections.end(), std::make_move_iterator(more.begin()),
                    std::make_move_iterator(more.end()));
}

/// The sections that each maker has of the data, in their order.
template <class Makers, class Data>
void AppendSections(Report& report, const Makers& makers, const Data& data)
{
    for (const auto& make : makers)
        Append(report.sections, make(data));
}

} // namespace host
