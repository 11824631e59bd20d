#include "host/data/StudyLabels.h"

#include <cstddef>

namespace host {

std::vector<std::string> StudyLabels(const ColumnName& column, const DataTable& table)
{
    std::vector<std::string> labels;
    labels.reserve(table.RowCount());
    if (!column) {
        for (std::size_t row = 1; row <= table.RowCount(); ++row)
            labels.push_back(std::to_string(row));
        return labels;
    }
    const std::size_t position = table.PositionOf(*column);
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        labels.emplace_back(table.Text(row, position));
    return labels;
}

} // namespace host
