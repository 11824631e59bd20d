#include "host/text/CompactTexts.h"

#include <limits>
#include <new>

namespace host {

CompactTexts::CompactTexts(const std::vector<std::string>& texts)
{
    for (const std::string& text : texts)
        push_back(text);
}

CompactTexts::CompactTexts(std::initializer_list<std::string_view> texts)
{
    for (const std::string_view text : texts)
        push_back(text);
}

void CompactTexts::push_back(std::string_view text)
{
    ends_.push_back(0);
    Extend(text);
}

void CompactTexts::Extend(std::string_view text)
{
    characters_.append(text);
    SetLastEnd();
}

void CompactTexts::ExtendBlanks(std::size_t count)
{
    characters_.append(count, ' ');
    SetLastEnd();
}

void CompactTexts::Reserve(std::size_t count, std::size_t size)
{
    ends_.reserve(count);
    characters_.reserve(count * size);
}

void CompactTexts::SetLastEnd()
{
    if (characters_.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::bad_alloc();
    ends_.back() = static_cast<std::uint32_t>(characters_.size());
}

} // namespace host
