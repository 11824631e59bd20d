#include "host/data/ColumnName.h"

#include "host/data/Encodings.h"
#include "host/data/FieldValue.h"

#include <utf8proc.h>

#include <cstdlib>
#include <memory>

namespace host {

namespace {

/// The text in normalization form C of Unicode; as it is where it is no UTF-8.
std::string Composed(std::string_view text)
{
    utf8proc_uint8_t* composed = nullptr;
    const utf8proc_ssize_t size = utf8proc_map(
        reinterpret_cast<const utf8proc_uint8_t*>(text.data()), static_cast<utf8proc_ssize_t>(text.size()),
        &composed, static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(composed, &std::free);
    if (size < 0)
        return std::string(text);
    return {reinterpret_cast<const char*>(composed), static_cast<std::size_t>(size)};
}

} // namespace

bool IsSameName(std::string_view one, std::string_view other)
{
    one = WithoutBlanks(one);
    other = WithoutBlanks(other);
    return one == other || (!IsAscii(one) && !IsAscii(other) && Composed(one) == Composed(other));
}

} // namespace host
