#include "host/batch/FieldNumber.h"

#include "host/text/AsciiCase.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace host {

namespace {

bool IsBlank(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\r';
}

} // namespace

std::string_view TrimmedField(std::string_view field) noexcept
{
    while (!field.empty() && IsBlank(field.front()))
        field.remove_prefix(1);
    while (!field.empty() && IsBlank(field.back()))
        field.remove_suffix(1);
    return field;
}

bool IsMissingField(std::string_view field) noexcept
{
    if (field.size() > 3)
        return false;
    return field.empty() || field == "." || EqualInAnyCase(field, "NA") || EqualInAnyCase(field, "N/A") ||
           EqualInAnyCase(field, "NAN");
}

FieldNumber NumberOf(std::string_view field) noexcept
{
    using Kind = FieldNumber::Kind;
    std::string_view digits = TrimmedField(field);
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-')
        digits.remove_prefix(1); // from_chars takes no plus sign
    FieldNumber number;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number.value);
    const bool isWhole = end == digits.data() + digits.size();
    if (error == std::errc() && isWhole && std::isfinite(number.value) && !KXMV::IsMissing(number.value))
        number.kind = Kind::NUMBER;
    else if (IsMissingField(digits) || (isWhole && std::isnan(number.value))) // "-nan", as C prints it
        number.kind = Kind::MISSING;
    else
        number.kind = isWhole && error != std::errc::invalid_argument ? Kind::OUTSIDE : Kind::NO_NUMBER;
    return number;
}

} // namespace host
