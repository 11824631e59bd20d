#include "host/table/DataColumns.h"

#include "host/cli/GroupColumns.h"
#include "host/text/NumberText.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>

namespace host {

namespace {

class Reader
{
public:
    explicit Reader(const DataTable& table) : table_(table) {}

    std::vector<double> Values(const ColumnName& column) const
    {
        const std::size_t position = table_.PositionOf(*column);
        std::vector<double> values(table_.RowCount());
        for (std::size_t row = 0; row < values.size(); ++row)
            values[row] = table_.Number(row, position);
        return values;
    }

    void Add(const char* header, const char* suffix, const ColumnName& column)
    {
        if (column)
            columns.push_back({fmt::format("{}{}", header, suffix), Values(column)});
    }

    std::vector<DataColumn> columns;

private:
    const DataTable& table_;
};

std::vector<double> Sums(std::vector<double> values, const std::vector<double>& others)
{
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = HasValue(values[i]) && HasValue(others[i]) ? values[i] + others[i] : KXMV::Missing();
    return values;
}

void AddGroup(Reader& reader, const GroupColumns& group)
{
    reader.Add("Events", group.suffix, group.events);
    if (group.events && group.nonEvents)
        reader.columns.push_back({fmt::format("Total{}", group.suffix),
                                  Sums(reader.Values(group.events), reader.Values(group.nonEvents))});
    reader.Add("Person-time", group.suffix, group.time);
    reader.Add("Total", group.suffix, group.size);
    reader.Add("Mean", group.suffix, group.mean);
    reader.Add("SD", group.suffix, group.stdDev);
    if (group.variance != nullptr)
        reader.Add("Variance", group.suffix, *group.variance);
    if (group.summary == nullptr)
        return;
    reader.Add("Median", group.suffix, group.summary->median);
    reader.Add("Q1", group.suffix, group.summary->q1);
    reader.Add("Q3", group.suffix, group.summary->q3);
    reader.Add("Minimum", group.suffix, group.summary->minimum);
    reader.Add("Maximum", group.suffix, group.summary->maximum);
}

} // namespace

std::vector<DataColumn> DataColumnsOf(const Options& options, const DataTable& table)
{
    Reader reader(table);
    for (const GroupColumns& group : GroupColumnsOf(options))
        AddGroup(reader, group);
    reader.Add("r", "", options.correlation);
    return std::move(reader.columns);
}

} // namespace host
