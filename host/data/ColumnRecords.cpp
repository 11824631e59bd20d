#include "host/data/ColumnRecords.h"

namespace host {

ColumnRecords::ColumnRecords(std::vector<std::vector<double>> columns, std::size_t count)
    : columns_(std::move(columns)), count_(count), record_(std::vector<double>(columns_.size()))
{}

bool ColumnRecords::Start()
{
    next_ = 0;
    isStarted_ = true;
    return true;
}

bool ColumnRecords::Reset()
{
    return isStarted_ && Start();
}

const Record* ColumnRecords::Next()
{
    if (!isStarted_ || next_ == count_)
        return nullptr;
    for (std::size_t i = 0; i < columns_.size(); ++i)
        record_.Set(static_cast<int>(i), columns_[i][next_]);
    ++next_;
    return &record_;
}

} // namespace host
