#pragma once

#include "host/batch/Rejects.h"
#include "host/batch/RowStream.h"
#include "host/batch/SetSink.h"

#include <deque>

namespace host {

// How rows become sets. Each way gives the sets in the order in which their keys come first, and rejects the
// rows that it cannot use.

/// One file whose rows of a key are together: a key that comes back is another set. Holds one set.
void PoolGroupedRows(RowStream& file, SetSink& sets, Rejects& rejects);

/// One file in any order. Holds the numbers of all rows.
void PoolRowsInAnyOrder(RowStream& file, bool hasAlleles, SetSink& sets, Rejects& rejects);

/// Files that are sorted by the bytes of their keys. Holds one set. Throws UnusableInput for a file that is
/// not sorted. Only the first row of a key in a file is used.
void PoolSortedFiles(std::deque<RowStream>& files, SetSink& sets, Rejects& rejects);

/// Files in any order. Holds the numbers of all rows. Only the first row of a key in a file is used.
void PoolFilesInAnyOrder(std::deque<RowStream>& files, bool hasAlleles, SetSink& sets, Rejects& rejects);

} // namespace host
