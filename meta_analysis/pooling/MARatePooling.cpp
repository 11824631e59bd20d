#include "meta_analysis/pooling/MARatePooling.h"

#include "meta_analysis/pooling/MATablePool.h"

namespace MA_NAMESPACE {

namespace {

/// Calls `use` with the pooling of the studies by the method of the measure, if it has one.
template <class Use>
void WithPool(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice, Use use)
{
    if (choice.measure == MAConst::RATES_RATIO)
        use(MATablePool<MARateRatioPooling>(studies, choice, choice.nullHypothesis));
    else if (choice.measure == MAConst::RATES_DIFFERENCE)
        use(MATablePool<MARateDifferencePooling>(studies, choice, choice.nullHypothesis));
}

} // namespace

MAPooledTables PoolTables(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice)
{
    MAPooledTables result;
    WithPool(studies, choice, [&](auto pool) { result = pool.PoolAll(); });
    result.weights.resize(studies.size(), KXMV::Missing());
    return result;
}

int CountUninformative(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice)
{
    return PoolTables(studies, choice).leftOutTables;
}

std::vector<MATableEstimate> PoolTablePrefixes(std::span<const MAGroupRates> studies,
                                               const MARatePoolingChoice& choice)
{
    std::vector<MATableEstimate> estimates;
    WithPool(studies, choice, [&](auto pool) { estimates = pool.PoolPrefixes(); });
    return estimates;
}

} // namespace MA_NAMESPACE
