#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/common/Record.h"

#include <cstddef>
#include <vector>

/// Records held in memory.
///
/// Every operation succeeds, except that a pass needs `Start`: before it there is no record and `Reset`
/// returns false.
class META_ANALYSIS_EXPORT VectorRecordIter : public MultiPassRecordIter
{
public:
    explicit VectorRecordIter(std::vector<Record> records) noexcept;

    /// One record for each row; rows may differ in length. Throws std::bad_alloc when memory runs out.
    explicit VectorRecordIter(const std::vector<std::vector<double>>& rows);

    bool Start() override;
    bool Reset() override;

    /// The record stays valid as long as the iterator.
    const Record* Next() override;

    int GetError() const override;

private:
    std::vector<Record> records_;
    std::size_t next_ = 0;
    bool started_ = false;
};
