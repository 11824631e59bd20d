#pragma once

#include <string_view>

namespace host {

/// A field of a column of numbers, as it is read.
struct FieldNumber
{
    enum class Kind
    {
        NUMBER,
        MISSING,
        NO_NUMBER,
        OUTSIDE ///< infinite, or outside the range of numbers that can be stored
    };

    Kind kind = Kind::MISSING;
    double value = 0.0;
};

/// The field without blanks around it.
std::string_view TrimmedField(std::string_view field) noexcept;

/// Whether the field, without blanks around it, is empty, a point, NA, N/A or NaN, in any case.
bool IsMissingField(std::string_view field) noexcept;

FieldNumber NumberOf(std::string_view field) noexcept;

} // namespace host
