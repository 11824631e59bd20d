#pragma once

#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/common/Record.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace host {

/// Columns of numbers as the library's records. A record is made when its turn comes, so that many records
/// take no memory beside the columns.
class ColumnRecords : public MultiPassRecordIter
{
public:
    /// Columns of `count` values each.
    ColumnRecords(std::vector<std::vector<double>> columns, std::size_t count);

    bool Start() override;
    bool Reset() override;
    const Record* Next() override;
    int GetError() const override { return 0; }

private:
    std::vector<std::vector<double>> columns_; ///< by the variable's position
    std::size_t count_;
    std::size_t next_ = 0;
    bool isStarted_ = false;
    Record record_;
};

} // namespace host
