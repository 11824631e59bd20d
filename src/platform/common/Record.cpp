#include "meta_analysis/platform/common/Record.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <exception>

double Record::Get(int index) const noexcept
{
    // A negative index turns into one far beyond any record.
    const auto position = static_cast<std::size_t>(index);
    return position < values_.size() ? values_[position] : KXMV::Missing();
}

void Record::Set(int index, double value) noexcept
{
    const auto position = static_cast<std::size_t>(index);
    if (position < values_.size())
        values_[position] = value;
}

bool Record::Resize(std::size_t size) noexcept
{
    try {
        values_.resize(size, KXMV::Missing());
        return true;
    } catch (const std::exception&) {
        return false;
    }
}
