#pragma once

#include "host/data/MissingTexts.h"

#include <string_view>

namespace host {

/// A field of a column of numbers, as it is read.
struct RowNumber
{
    enum class Kind
    {
        NUMBER,
        MISSING,
        NO_NUMBER,
        OTHER_MARK, ///< a number with the other decimal mark, or with separated thousands
        OUTSIDE     ///< infinite, or outside the range of numbers that can be stored
    };

    Kind kind = Kind::MISSING;
    double value = 0.0;
};

/// The field without blanks around it.
std::string_view TrimmedField(std::string_view field) noexcept;

/// How the numbers of a file are written.
struct NumberForm
{
    char decimalMark = '.';
    MissingTexts missing{{}};
};

RowNumber NumberOf(std::string_view field, const NumberForm& form);

} // namespace host
