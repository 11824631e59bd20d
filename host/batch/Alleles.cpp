#include "host/batch/Alleles.h"

#include "host/text/AsciiCase.h"

namespace host {

namespace {

/// The letter on the other strand, in upper case; 0 for any other text.
char ComplementOf(std::string_view allele) noexcept
{
    if (allele.size() != 1)
        return '\0';
    switch (UpperCase(allele.front())) {
    case 'A':
        return 'T';
    case 'C':
        return 'G';
    case 'G':
        return 'C';
    case 'T':
        return 'A';
    default: // no enumeration
        return '\0';
    }
}

AlleleMatch MatchAsWritten(const Alleles& first, const Alleles& row) noexcept
{
    if (EqualInAnyCase(first.effect, row.effect) && EqualInAnyCase(first.other, row.other))
        return AlleleMatch::SAME;
    if (EqualInAnyCase(first.effect, row.other) && EqualInAnyCase(first.other, row.effect))
        return AlleleMatch::SWAPPED;
    return AlleleMatch::NONE;
}

} // namespace

AlleleMatch MatchAlleles(const Alleles& first, const Alleles& row) noexcept
{
    const AlleleMatch asWritten = MatchAsWritten(first, row);
    if (asWritten != AlleleMatch::NONE)
        return asWritten;
    const char effect = ComplementOf(row.effect);
    const char other = ComplementOf(row.other);
    if (effect == '\0' || other == '\0')
        return AlleleMatch::NONE;
    return MatchAsWritten(first, {{&effect, 1}, {&other, 1}});
}

} // namespace host
