#pragma once

#include "host/data/DataTable.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace host {

/// The lines of the file, from 1, on which the records start, kept without the file: most files have a record
/// on every line, so that one entry is enough for all.
class RecordLines
{
public:
    RecordLines() = default;
    explicit RecordLines(const DataTable& table);

    /// Line of a record, which counts from 0.
    std::size_t Of(int record) const;

private:
    /// The first record and line of each run of records on successive lines, ascending.
    std::vector<std::pair<std::size_t, std::size_t>> runs_;
};

} // namespace host
