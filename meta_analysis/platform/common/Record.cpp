#include "meta_analysis/platform/common/Record.h"

#include <exception>

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
