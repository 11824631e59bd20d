#include "meta_analysis/pooling/MATablePooling.h"

#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/pooling/MABinaryPooling.h"
#include "meta_analysis/pooling/MAHomogeneity.h"
#include "meta_analysis/pooling/MAPooledCounts.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// The ratio of a pooled log ratio. Unlike in `StudyRatio` the standard error is the root of the exponential
/// of the variance, and no value is missing.
MAEstimate PooledRatio(const MAEstimate& onLogScale)
{
    MAEstimate ratio;
    ratio.estimate = std::exp(onLogScale.estimate);
    ratio.variance = std::exp(onLogScale.variance);
    ratio.stdError = std::sqrt(ratio.variance);
    ratio.ciLower = std::exp(onLogScale.ciLower);
    ratio.ciUpper = std::exp(onLogScale.ciUpper);
    return ratio;
}

/// The tables as read, each with its correction, under the running sums of a method.
template <class Pooling>
class TablePool
{
public:
    using Measure = typename Pooling::Measure;

    TablePool(std::span<const MATable> tables, const MATablePoolingChoice& choice)
        : tables_(tables),
          choice_(choice),
          correction_(choice.correction.ResolvedFor(tables)),
          quantile_(TwoSidedNormalQuantile(choice.alpha)),
          counts_(choice.pooledZeroCells)
    {}

    MAPooledTables PoolAll();
    std::vector<MATableEstimate> PoolPrefixes();

private:
    void Add(const MATable& table) { counts_.Add(table, correction_.Corrected(table)); }
    MATableEstimate Estimate(const MAPooledEffect& pooled) const;
    void SetHeterogeneity(std::size_t studyCount, MAPooledModel& model) const;

    std::span<const MATable> tables_;
    const MATablePoolingChoice& choice_;
    MAZeroCorrection correction_;
    double quantile_;
    MAPooledCounts<Pooling> counts_;
};

template <class Pooling>
MATableEstimate TablePool<Pooling>::Estimate(const MAPooledEffect& pooled) const
{
    MATableEstimate result;
    result.effect = InferNormal(pooled.estimate, pooled.variance,
                                NullOnTestScale<Pooling>(choice_.nullHypothesis), quantile_);
    result.correctedTables = pooled.correctedTables;
    if constexpr (Measure::onLogScale)
        result.ratio = PooledRatio(result.effect);
    return result;
}

template <class Pooling>
MAPooledTables TablePool<Pooling>::PoolAll()
{
    for (const MATable& table : tables_)
        Add(table);
    const MAPooledEffect pooled = counts_.Effect();
    const MATableEstimate estimate = Estimate(pooled);

    MAPooledTables result;
    result.model.effect = estimate.effect;
    result.ratio = estimate.ratio;
    result.correctedTables = estimate.correctedTables;
    result.weights.reserve(tables_.size());
    for (const MATable& table : tables_) {
        result.weights.push_back(counts_.Weight(table, correction_.Corrected(table), pooled.isCorrected));
        result.leftOutTables += !counts_.Includes(table);
    }
    const std::size_t studyCount = tables_.size() - static_cast<std::size_t>(result.leftOutTables);
    if (studyCount >= 2)
        SetHeterogeneity(studyCount, result.model);
    return result;
}

template <class Pooling>
void TablePool<Pooling>::SetHeterogeneity(std::size_t studyCount, MAPooledModel& model) const
{
    double q = 0.0;
    for (const MATable& table : tables_) {
        if (!counts_.Includes(table))
            continue;
        const MATable corrected = correction_.Corrected(table);
        const double residual = EffectBy<Measure>(corrected).effect - model.effect.estimate;
        q += 1.0 / Measure::Variance(corrected) * (residual * residual);
    }
    model.homogeneity = TestHomogeneity(q, studyCount);
    model.heterogeneity = MeasureHeterogeneity(q, studyCount, quantile_);
}

template <class Pooling>
std::vector<MATableEstimate> TablePool<Pooling>::PoolPrefixes()
{
    std::vector<MATableEstimate> estimates;
    estimates.reserve(tables_.size());
    for (const MATable& table : tables_) {
        Add(table);
        estimates.push_back(Estimate(counts_.Effect()));
    }
    return estimates;
}

template <class Measure>
MATableEffects EffectsBy(std::span<const MATable> tables, const MATablePoolingChoice& choice)
{
    const MAZeroCorrection correction = choice.correction.ResolvedFor(tables);
    MATableEffects effects;
    effects.effectSizes.reserve(tables.size());
    effects.variances.reserve(tables.size());
    for (const MATable& table : tables) {
        const MATable corrected = correction.Corrected(table);
        effects.effectSizes.push_back(EffectBy<Measure>(corrected).effect);
        effects.variances.push_back(Measure::Variance(corrected));
    }
    return effects;
}

} // namespace

MAPooledTables PoolTables(std::span<const MATable> tables, const MATablePoolingChoice& choice)
{
    MAPooledTables result;
    WithBinaryPooling(choice.measure,
                      [&](auto pooling) { result = TablePool<decltype(pooling)>(tables, choice).PoolAll(); });
    result.weights.resize(tables.size(), KXMV::Missing());
    return result;
}

int CountUninformative(std::span<const MATable> tables, const MATablePoolingChoice& choice)
{
    int count = 0;
    WithBinaryPooling(choice.measure, [&](auto pooling) {
        const MAPooledCounts<decltype(pooling)> counts(choice.pooledZeroCells);
        for (const MATable& table : tables)
            count += !counts.Includes(table);
    });
    return count;
}

std::vector<MATableEstimate> PoolTablePrefixes(std::span<const MATable> tables,
                                               const MATablePoolingChoice& choice)
{
    std::vector<MATableEstimate> estimates;
    WithBinaryPooling(choice.measure, [&](auto pooling) {
        estimates = TablePool<decltype(pooling)>(tables, choice).PoolPrefixes();
    });
    return estimates;
}

MATableEffects EffectsOfTables(std::span<const MATable> tables, const MATablePoolingChoice& choice)
{
    MATableEffects effects;
    WithMeasure(choice.measure,
                [&](auto measure) { effects = EffectsBy<decltype(measure)>(tables, choice); });
    return effects;
}

} // namespace MA_NAMESPACE
