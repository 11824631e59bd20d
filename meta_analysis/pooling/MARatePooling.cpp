#include "meta_analysis/pooling/MARatePooling.h"

#include "meta_analysis/pooling/MATablePool.h"

namespace MA_NAMESPACE {

namespace {

/// Calls `use` with empty running sums of the method for the measure, if it has one.
template <class Use>
void WithRatePooling(MAConst::OUTCOMEMEASURE measure, Use use)
{
    if (measure == MAConst::RATES_RATIO)
        use(MARateRatioPooling());
    else if (measure == MAConst::RATES_DIFFERENCE)
        use(MARateDifferencePooling());
}

template <class Pooling>
MATablePool<Pooling> PoolOf(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice)
{
    return {studies, choice, choice.nullHypothesis};
}

} // namespace

MAPooledTables PoolTables(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice)
{
    MAPooledTables result;
    WithRatePooling(choice.measure,
                    [&](auto pooling) { result = PoolOf<decltype(pooling)>(studies, choice).PoolAll(); });
    result.weights.resize(studies.size(), KXMV::Missing());
    return result;
}

int CountUninformative(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice)
{
    int count = 0;
    WithRatePooling(choice.measure, [&](auto pooling) {
        count = CountLeftOut<decltype(pooling)>(studies, choice.pooledZeroCells);
    });
    return count;
}

std::vector<MATableEstimate> PoolTablePrefixes(std::span<const MAGroupRates> studies,
                                               const MARatePoolingChoice& choice)
{
    std::vector<MATableEstimate> estimates;
    WithRatePooling(choice.measure, [&](auto pooling) {
        estimates = PoolOf<decltype(pooling)>(studies, choice).PoolPrefixes();
    });
    return estimates;
}

std::vector<MAPooledModel> PoolTablesWithoutEach(std::span<const MAGroupRates> studies,
                                                 const MARatePoolingChoice& choice)
{
    std::vector<MAPooledModel> models;
    WithRatePooling(choice.measure, [&](auto pooling) {
        models = PoolOf<decltype(pooling)>(studies, choice).PoolWithoutEach();
    });
    models.resize(studies.size());
    return models;
}

} // namespace MA_NAMESPACE
