#pragma once

#include <string_view>

namespace host {

/// The alleles of a genetic variant: that of the effect, and the other one.
struct Alleles
{
    std::string_view effect;
    std::string_view other;
};

/// How the alleles of a row compare with those that its key has first.
enum class AlleleMatch
{
    SAME,
    SWAPPED, ///< the effect is of the other allele, so that its sign changes
    NONE
};

/// Compares in any case. Where the row has neither the same nor swapped alleles, it may be from the other
/// strand, with the complements of single letters A, C, G and T. So A/T and C/G are taken as written, and
/// longer alleles have no complement.
AlleleMatch MatchAlleles(const Alleles& first, const Alleles& row) noexcept;

} // namespace host
