#include "host/data/RecordLines.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace host {

RecordLines::RecordLines(const DataTable& table)
{
    std::size_t expected = 0; // no line
    for (std::size_t record = 0; record < table.RowCount(); ++record) {
        const std::size_t line = table.LineOf(record);
        if (line != expected)
            runs_.emplace_back(record, line);
        expected = line + 1;
    }
}

std::size_t RecordLines::Of(int record) const
{
    const auto position = static_cast<std::size_t>(record);
    const std::pair last = {position, std::numeric_limits<std::size_t>::max()};
    const auto [first, line] = *std::prev(std::upper_bound(runs_.begin(), runs_.end(), last));
    return line + (position - first);
}

} // namespace host
