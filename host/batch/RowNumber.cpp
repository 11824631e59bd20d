#include "host/batch/RowNumber.h"

#include "host/data/FieldValue.h"

#include <cmath>

namespace host {

namespace {

using Kind = RowNumber::Kind;

bool IsBlank(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\r';
}

/// Of a field that needs a second look.
RowNumber SlowNumberOf(std::string_view field, const NumberForm& form)
{
    if (form.missing.Have(field))
        return {};
    const FieldNumber number = ReadFieldNumber(field, form.decimalMark);
    switch (number.kind) {
    case NumberKind::NUMBER:
        return {form.missing.HaveNumber(number.value) ? Kind::MISSING : Kind::NUMBER, number.value};
    case NumberKind::NOT_FINITE: // "-nan", as C prints it
        return {std::isnan(number.value) ? Kind::MISSING : Kind::OUTSIDE};
    case NumberKind::OUTSIDE:
        return {Kind::OUTSIDE};
    case NumberKind::NO_NUMBER:
        break;
    }
    return {EvidenceOf(field) == DecimalEvidence::NO_NUMBER ? Kind::NO_NUMBER : Kind::OTHER_MARK};
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

RowNumber NumberOf(std::string_view field, const NumberForm& form)
{
    std::string_view digits = TrimmedField(field);
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-')
        digits.remove_prefix(1); // from_chars takes no plus sign
    RowNumber number = {Kind::NUMBER};
    if (form.decimalMark == '.' && !form.missing.HaveNumbers() && ParsePlainNumber(digits, number.value))
        return number;
    return SlowNumberOf(WithoutBlanks(digits), form);
}

} // namespace host
