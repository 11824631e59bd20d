#include "meta_analysis/pooling/MATablePooling.h"

#include "meta_analysis/pooling/MABinaryPooling.h"
#include "meta_analysis/pooling/MATablePool.h"

namespace MA_NAMESPACE {

namespace {

template <class Pooling>
MATablePool<Pooling> PoolOf(std::span<const MATable> tables, const MATablePoolingChoice& choice)
{
    return {tables, choice, NullOnTestScale<Pooling>(choice.nullHypothesis)};
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
                      [&](auto pooling) { result = PoolOf<decltype(pooling)>(tables, choice).PoolAll(); });
    result.weights.resize(tables.size(), KXMV::Missing());
    return result;
}

int CountUninformative(std::span<const MATable> tables, const MATablePoolingChoice& choice)
{
    int count = 0;
    WithBinaryPooling(choice.measure, [&](auto pooling) {
        count = CountLeftOut<decltype(pooling)>(tables, choice.pooledZeroCells);
    });
    return count;
}

std::vector<MATableEstimate> PoolTablePrefixes(std::span<const MATable> tables,
                                               const MATablePoolingChoice& choice)
{
    std::vector<MATableEstimate> estimates;
    WithBinaryPooling(choice.measure, [&](auto pooling) {
        estimates = PoolOf<decltype(pooling)>(tables, choice).PoolPrefixes();
    });
    return estimates;
}

std::vector<MAPooledModel> PoolTablesWithoutEach(std::span<const MATable> tables,
                                                 const MATablePoolingChoice& choice)
{
    std::vector<MAPooledModel> models;
    WithBinaryPooling(choice.measure, [&](auto pooling) {
        models = PoolOf<decltype(pooling)>(tables, choice).PoolWithoutEach();
    });
    models.resize(tables.size());
    return models;
}

MATableEffects EffectsOfTables(std::span<const MATable> tables, const MATablePoolingChoice& choice)
{
    MATableEffects effects;
    WithMeasure(choice.measure,
                [&](auto measure) { effects = EffectsBy<decltype(measure)>(tables, choice); });
    return effects;
}

} // namespace MA_NAMESPACE
