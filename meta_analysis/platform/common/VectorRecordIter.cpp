#include "meta_analysis/platform/common/VectorRecordIter.h"

#include <utility>

VectorRecordIter::VectorRecordIter(std::vector<Record> records) noexcept : records_(std::move(records)) {}

VectorRecordIter::VectorRecordIter(const std::vector<std::vector<double>>& rows)
    : records_(rows.begin(), rows.end())
{}

bool VectorRecordIter::Start()
{
    started_ = true;
    next_ = 0;
    return true;
}

bool VectorRecordIter::Reset()
{
    next_ = 0;
    return started_;
}

const Record* VectorRecordIter::Next()
{
    return started_ && next_ < records_.size() ? &records_[next_++] : nullptr;
}

int VectorRecordIter::GetError() const
{
    return 0;
}
