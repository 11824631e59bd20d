#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <span>

namespace MA_NAMESPACE {

/// Kendall's rank correlation, with two-sided tests that there is none.
struct MARankCorrelation
{
    double tau = KXMV::Missing();         ///< tau-b
    double pValue = KXMV::Missing();      ///< by the normal distribution
    double exactPValue = KXMV::Missing(); ///< without ties and for fewer than 50 pairs
};

/// The rank correlation of pairs (x, y), with C concordant and D discordant of n (n - 1) / 2 pairs of pairs:
///     tau-b = (C - D) / sqrt((n (n - 1) / 2 - ties in x) (n (n - 1) / 2 - ties in y)).
/// Missing when all x or all y are equal, when a value is not a number, and without two pairs. The normal
/// test has the variance of C - D with ties, and no correction for continuity. The exact one takes twice the
/// smaller tail, at most 1, of the distribution of D over all orders. O(n log n).
/// Kendall (1970), Rank Correlation Methods, ch. 3 to 5.
MARankCorrelation CorrelateRanks(std::span<const double> x, std::span<const double> y);

} // namespace MA_NAMESPACE
