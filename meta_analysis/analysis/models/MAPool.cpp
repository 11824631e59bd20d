#include "meta_analysis/analysis/models/MAPool.h"

#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MATablePooling.h"

#include <utility>

namespace MA_NAMESPACE {

namespace {

/// On running sums, taken in the order of a fit of each prefix, so that the results are the same.
MAPooledPrefixes PoolFixedPrefixes(const MAStudies& studies, const MASelection& selection,
                                   const MAModelChoice& choice)
{
    const double quantile = TwoSidedNormalQuantile(choice.fixed.alpha);
    MAPooledPrefixes prefixes;
    prefixes.rows.reserve(selection.size());
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (const std::size_t study : selection) {
        const double weight = 1.0 / studies.variance[study];
        weightSum += weight;
        weightedSum += weight * studies.effectSize[study];
        prefixes.rows.push_back(
            {InferNormal(weightedSum / weightSum, 1.0 / weightSum, choice.fixed.nullHypothesis, quantile)});
    }
    return prefixes;
}

MAPooledPrefixes PoolCountPrefixes(const MAStudies& studies, const MASelection& selection,
                                   const MAModelChoice& choice)
{
    MAPooledPrefixes prefixes;
    for (const MATableEstimate& pooled :
         PoolTablePrefixes(Selected(studies.tables, selection), choice.tables))
        prefixes.rows.push_back({pooled.effect, pooled.correctedTables});
    return prefixes;
}

/// tau² of every prefix is estimated anew; the vectors grow with the prefix, so that no step copies.
MAPooledPrefixes PoolRandomPrefixes(const MAStudies& studies, const MASelection& selection,
                                    const MAModelChoice& choice)
{
    const std::vector<double> effectSizes = Selected(studies.effectSize, selection);
    const std::vector<double> variances = Selected(studies.variance, selection);
    MAPooledPrefixes prefixes;
    prefixes.rows.reserve(selection.size());
    for (std::size_t count = 1; count <= selection.size() && !prefixes.status.IsError(); ++count) {
        const MAPooledModel model =
            PoolRandomEffects({{effectSizes.data(), count}, {variances.data(), count}}, choice.random);
        prefixes.status = model.status;
        if (!model.status.IsError())
            prefixes.rows.push_back({model.effect});
    }
    return prefixes;
}

} // namespace

MAPooledModel PoolStep(const MAEffects& effects, const MAModelChoice& choice)
{
    return choice.type == MAConst::MODEL_FIXED ? PoolFixedEffect(effects, choice.fixed)
                                               : PoolRandomEffects(effects, choice.random);
}

MAPooledStudies PoolEffects(const MAEffects& effects, const MAModelChoice& choice)
{
    MAPooledStudies pooled;
    pooled.model = PoolStep(effects, choice);
    pooled.isTau2Doubtful =
        choice.type != MAConst::MODEL_FIXED && IsTau2Doubtful(effects, choice.random, pooled.model);
    return pooled;
}

MAPooledStudies PoolCounts(const std::vector<MATable>& tables, const MAModelChoice& choice)
{
    MAPooledTables pooled = PoolTables(tables, choice.tables);
    return {pooled.model, pooled.correctedTables, false, std::move(pooled.weights)};
}

MAPooledStudies Pool(const MAStudies& studies, const MAModelChoice& choice)
{
    return choice.poolsTables ? PoolCounts(studies.tables, choice)
                              : PoolEffects({studies.effectSize, studies.variance}, choice);
}

MAPooledStudies Pool(const MAStudies& studies, const MASelection& selection, const MAModelChoice& choice)
{
    if (choice.poolsTables)
        return PoolCounts(Selected(studies.tables, selection), choice);
    return PoolEffects({Selected(studies.effectSize, selection), Selected(studies.variance, selection)},
                       choice);
}

MAPooledPrefixes PoolPrefixes(const MAStudies& studies, const MASelection& selection,
                              const MAModelChoice& choice)
{
    if (choice.poolsTables)
        return PoolCountPrefixes(studies, selection, choice);
    return choice.type == MAConst::MODEL_FIXED ? PoolFixedPrefixes(studies, selection, choice)
                                               : PoolRandomPrefixes(studies, selection, choice);
}

std::vector<double> PoolingWeights(const MAStudies& studies, const MAPooledStudies& pooled)
{
    return pooled.tableWeights.empty() ? InverseVarianceWeights(studies.variance, pooled.model)
                                       : pooled.tableWeights;
}

std::vector<double> InverseVarianceWeights(const std::vector<double>& variances, const MAPooledModel& model)
{
    const double tau2 = KXMV::IsMissing(model.tau2) ? 0.0 : model.tau2;
    std::vector<double> weights;
    weights.reserve(variances.size());
    for (const double variance : variances)
        weights.push_back(1.0 / (tau2 + variance));
    return weights;
}

} // namespace MA_NAMESPACE
