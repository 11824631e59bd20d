#pragma once

#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/settings/MAConst.h"

#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

/// A pooled effect on the scale of the test, and the number of the tables behind it that were corrected.
struct MAPooledEffect
{
    double estimate;
    double variance;
    bool isCorrected; ///< whether the corrected counts were pooled
    int correctedTables;
};

/// The running sums of a method under the rule for the zero cells of pooled counts.
///
/// The Mantel-Haenszel and Peto sums need no correction as long as some table has events (and non-events) in
/// each group, and the correction of every sparse table biases them: Sweeting, Sutton and Lambert (2004),
/// Statistics in Medicine 23, 1351-1375; Bradburn et al. (2007), Statistics in Medicine 26, 53-77.
///
/// Where counts are pooled as read, a table without information on the effect (an odds ratio without events
/// in either group) takes no part: its terms are 0, and those of its correction would only tell the ratio of
/// its group sizes. So the corrected sums of `POOLED_ZERO_CELLS_IF_NEEDED` leave it out as well.
template <class Pooling>
class MAPooledCounts
{
public:
    using Table = typename Pooling::Table;

    /// A rule outside the enumeration is `POOLED_ZERO_CELLS_AS_STUDIES`.
    explicit MAPooledCounts(MAConst::POOLEDZEROCELLS rule)
        : poolsAsRead_(rule == MAConst::POOLED_ZERO_CELLS_IF_NEEDED ||
                       rule == MAConst::POOLED_ZERO_CELLS_NONE),
          mayCorrect_(rule != MAConst::POOLED_ZERO_CELLS_NONE)
    {}

    bool Includes(const Table& asRead) const { return !poolsAsRead_ || Pooling::IsInformative(asRead); }

    void Add(const Table& asRead, const Table& corrected)
    {
        if (!Includes(asRead))
            return;
        if (poolsAsRead_)
            asRead_.Add(asRead);
        if (mayCorrect_) {
            corrected_.Add(corrected);
            correctedTables_ += corrected.a != asRead.a;
        }
    }

    void Add(const MAPooledCounts& others)
    {
        asRead_.Add(others.asRead_);
        corrected_.Add(others.corrected_);
        correctedTables_ += others.correctedTables_;
    }

    MAPooledEffect Effect() const
    {
        if (!poolsAsRead_)
            return CorrectedEffect();
        const MAPooledEffect effect = {asRead_.Estimate(), asRead_.Variance(), false, 0};
        const bool isNeeded = mayCorrect_ && !IsPoolable(effect.estimate, effect.variance);
        return NaNUnlessFinite(isNeeded ? CorrectedEffect() : effect);
    }

    /// Weight of a table in `Effect`, of which `isCorrected` is a member; 0 for one that takes no part.
    double Weight(const Table& asRead, const Table& corrected, bool isCorrected) const
    {
        return Includes(asRead) ? Pooling::Weight(isCorrected ? corrected : asRead) : 0.0;
    }

private:
    MAPooledEffect CorrectedEffect() const
    {
        return {corrected_.Estimate(), corrected_.Variance(), true, correctedTables_};
    }

    /// A ratio of 0 or infinity, or of no table, has no test, no interval and no distance from the studies'
    /// effects. It becomes NaN rather than the missing value, which further arithmetic would take for a
    /// number.
    static MAPooledEffect NaNUnlessFinite(MAPooledEffect effect)
    {
        if (!std::isfinite(effect.estimate) || !std::isfinite(effect.variance))
            effect.estimate = effect.variance = std::numeric_limits<double>::quiet_NaN();
        return effect;
    }

    bool poolsAsRead_;
    bool mayCorrect_;
    int correctedTables_ = 0;
    Pooling asRead_;
    Pooling corrected_;
};

} // namespace MA_NAMESPACE
