#pragma once

#include "meta_analysis/inference/MACentredSums.h"
#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/platform/common/SumsWithoutEach.h"
#include "meta_analysis/pooling/MAHomogeneity.h"
#include "meta_analysis/pooling/MAPooledCounts.h"
#include "meta_analysis/pooling/MATablePooling.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

/// The ratio of a pooled log ratio. Unlike in `StudyRatio` the standard error is the root of the exponential
/// of the variance, and no value is missing.
inline MAEstimate PooledRatio(const MAEstimate& onLogScale)
{
    MAEstimate ratio;
    ratio.estimate = std::exp(onLogScale.estimate);
    ratio.variance = std::exp(onLogScale.variance);
    ratio.stdError = std::sqrt(ratio.variance);
    ratio.ciLower = std::exp(onLogScale.ciLower);
    ratio.ciUpper = std::exp(onLogScale.ciUpper);
    return ratio;
}

/// The tables as read, each with its correction, under the running sums of a method. A table is what the
/// method pools: a 2x2 table, or two groups' rates.
template <class Pooling>
class MATablePool
{
public:
    using Measure = typename Pooling::Measure;
    using Table = typename Pooling::Table;

    MATablePool(std::span<const Table> tables, const MACountPoolingChoice& choice, double nullOnTestScale)
        : tables_(tables),
          null_(nullOnTestScale),
          correction_(choice.correction.ResolvedFor(tables)),
          quantile_(TwoSidedNormalQuantile(choice.alpha)),
          counts_(choice.pooledZeroCells)
    {}

    MAPooledTables PoolAll();
    std::vector<MATableEstimate> PoolPrefixes();
    std::vector<MAPooledModel> PoolWithoutEach();

private:
    /// Sums over some of the tables.
    struct Sums
    {
        void Add(const Sums& others)
        {
            counts.Add(others.counts);
            effects.Add(others.effects);
            studyCount += others.studyCount;
        }

        MAPooledCounts<Pooling> counts;
        MACentredSums effects; ///< of the tables included, counted from `Origin`
        std::size_t studyCount = 0;
    };

    void Add(const Table& table) { counts_.Add(table, correction_.Corrected(table)); }
    MATableEstimate Estimate(const MAPooledEffect& pooled) const;
    double CochranQ(double estimate, std::size_t leftOut) const;
    void SetHeterogeneity(double q, std::size_t studyCount, MAPooledModel& model) const;
    double Origin() const;
    void AddTo(Sums& sums, const Table& table, double origin) const;
    MAPooledModel ModelOf(const Sums& others, std::size_t leftOut, double origin) const;

    std::span<const Table> tables_;
    double null_; ///< on the scale of the test
    MAZeroCorrection correction_;
    double quantile_;
    MAPooledCounts<Pooling> counts_;
};

template <class Pooling>
MATableEstimate MATablePool<Pooling>::Estimate(const MAPooledEffect& pooled) const
{
    MATableEstimate result;
    result.effect = InferNormal(pooled.estimate, pooled.variance, null_, quantile_);
    result.correctedTables = pooled.correctedTables;
    if constexpr (Measure::onLogScale)
        result.ratio = PooledRatio(result.effect);
    return result;
}

template <class Pooling>
MAPooledTables MATablePool<Pooling>::PoolAll()
{
    for (const Table& table : tables_)
        Add(table);
    const MAPooledEffect pooled = counts_.Effect();
    const MATableEstimate estimate = Estimate(pooled);

    MAPooledTables result;
    result.model.effect = estimate.effect;
    result.ratio = estimate.ratio;
    result.correctedTables = estimate.correctedTables;
    result.weights.reserve(tables_.size());
    for (const Table& table : tables_) {
        result.weights.push_back(counts_.Weight(table, correction_.Corrected(table), pooled.isCorrected));
        result.leftOutTables += !counts_.Includes(table);
    }
    const std::size_t studyCount = tables_.size() - static_cast<std::size_t>(result.leftOutTables);
    if (studyCount >= 2)
        SetHeterogeneity(CochranQ(estimate.effect.estimate, tables_.size()), studyCount, result.model);
    return result;
}

/// Of the tables but one.
template <class Pooling>
double MATablePool<Pooling>::CochranQ(double estimate, std::size_t leftOut) const
{
    double q = 0.0;
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        if (i == leftOut || !counts_.Includes(tables_[i]))
            continue;
        const Table corrected = correction_.Corrected(tables_[i]);
        const double residual = EffectBy<Measure>(corrected).effect - estimate;
        q += 1.0 / Measure::Variance(corrected) * (residual * residual);
    }
    return q;
}

template <class Pooling>
void MATablePool<Pooling>::SetHeterogeneity(double q, std::size_t studyCount, MAPooledModel& model) const
{
    model.homogeneity = TestHomogeneity(q, studyCount);
    model.heterogeneity = MeasureHeterogeneity(q, studyCount, quantile_);
}

template <class Pooling>
std::vector<MATableEstimate> MATablePool<Pooling>::PoolPrefixes()
{
    std::vector<MATableEstimate> estimates;
    estimates.reserve(tables_.size());
    for (const Table& table : tables_) {
        Add(table);
        estimates.push_back(Estimate(counts_.Effect()));
    }
    return estimates;
}

template <class Pooling>
std::vector<MAPooledModel> MATablePool<Pooling>::PoolWithoutEach()
{
    const Sums none = {counts_, {}, 0};
    for (const Table& table : tables_)
        Add(table);
    const double origin = Origin();
    const std::vector<Sums> others = SumsWithoutEach(
        tables_.size(), none, [&](std::size_t i, Sums& sums) { AddTo(sums, tables_[i], origin); });
    std::vector<MAPooledModel> models;
    models.reserve(tables_.size());
    for (std::size_t i = 0; i < tables_.size(); ++i)
        models.push_back(ModelOf(others[i], i, origin));
    return models;
}

/// The effect of all tables, if they have one.
template <class Pooling>
double MATablePool<Pooling>::Origin() const
{
    const double estimate = counts_.Effect().estimate;
    return std::isfinite(estimate) ? estimate : 0.0;
}

template <class Pooling>
void MATablePool<Pooling>::AddTo(Sums& sums, const Table& table, double origin) const
{
    const Table corrected = correction_.Corrected(table);
    sums.counts.Add(table, corrected);
    if (!counts_.Includes(table))
        return;
    sums.effects.Add(1.0 / Measure::Variance(corrected), EffectBy<Measure>(corrected).effect - origin);
    ++sums.studyCount;
}

/// Q is summed over the others where their sums about their mean lose digits, or are not finite.
template <class Pooling>
MAPooledModel MATablePool<Pooling>::ModelOf(const Sums& others, std::size_t leftOut, double origin) const
{
    MAPooledModel model;
    model.effect = Estimate(others.counts.Effect()).effect;
    const double estimate = model.effect.estimate;
    if (others.studyCount >= 2)
        SetHeterogeneity(others.effects.AreExact() ? others.effects.SquaresAbout(estimate - origin)
                                                   : CochranQ(estimate, leftOut),
                         others.studyCount, model);
    return model;
}

/// The number of tables that the method leaves out. Allocates nothing.
template <class Pooling>
int CountLeftOut(std::span<const typename Pooling::Table> tables, MAConst::POOLEDZEROCELLS rule)
{
    const MAPooledCounts<Pooling> counts(rule);
    return static_cast<int>(std::count_if(tables.begin(), tables.end(),
                                          [&](const auto& table) { return !counts.Includes(table); }));
}

} // namespace MA_NAMESPACE
