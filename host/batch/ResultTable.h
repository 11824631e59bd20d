#pragma once

#include "host/batch/SetChunk.h"
#include "host/cli/BatchColumns.h"

#include "meta_analysis/bulk/MABulkPooling.h"

#include <string>
#include <vector>

namespace host {

/// The results of a chunk in the columns that are wanted. Its memory is used again.
class ResultTable
{
public:
    explicit ResultTable(const std::vector<BatchColumn>& columns);

    /// Pools the sets. Errors: those of the library for the whole call.
    KXStatus Pool(const SetChunk& sets, const MA_NAMESPACE::MABulkModel& model);

    /// Writes a line for each set in place of `text`: the key, and the results in the shortest digits that
    /// read back the same number; NA for one that the model does not define.
    void Write(const SetChunk& sets, std::string& text) const;

private:
    std::vector<BatchColumn> columns_;
    std::vector<std::vector<double>> numbers_; ///< of each column, empty for one of counts
    std::vector<std::vector<int>> counts_;
};

/// The names of the columns as a line, the first of which is the key's.
std::string HeaderOf(const std::string& key, const std::vector<BatchColumn>& columns);

} // namespace host
