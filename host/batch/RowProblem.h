#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host {

/// Why a row is left out.
enum class RowProblem : std::uint16_t
{
    NONE,
    FIELD_COUNT,
    QUOTE,
    NO_KEY,
    KEY_UNUSABLE,
    NO_ALLELE,
    SAME_ALLELES,
    NO_EFFECT_SIZE,
    EFFECT_SIZE_NO_NUMBER,
    EFFECT_SIZE_OUTSIDE,
    NO_SPREAD,
    SPREAD_NO_NUMBER,
    SPREAD_OUTSIDE,
    SPREAD_NOT_POSITIVE,
    VARIANCE_EXTREME,
    OTHER_MARK,
    OTHER_ALLELES,
    DUPLICATED_KEY
};

/// The reasons as the file of rejected rows has them, at the positions of their numbers.
inline constexpr std::array<std::string_view, 18> ROW_PROBLEMS = {
    "",
    "the row has more or fewer fields than the header",
    "a double quote is misplaced, or not closed in its line",
    "the key is missing",
    "the key is too long, or has a tab in it",
    "an allele is missing or too long",
    "both alleles are the same",
    "the effect size is missing",
    "the effect size is not a number",
    "the effect size is infinite or outside the range of numbers",
    "the variance or standard error is missing",
    "the variance or standard error is not a number",
    "the variance or standard error is infinite or outside the range of numbers",
    "the variance or standard error is not above 0",
    "the variance is too small or too large to be pooled",
    "a number has the other decimal mark or separated thousands (see --decimal)",
    "the alleles are not those that the key has first",
    "the key has an earlier row in this file",
};
static_assert(ROW_PROBLEMS.size() == static_cast<std::size_t>(RowProblem::DUPLICATED_KEY) + 1);

} // namespace host
