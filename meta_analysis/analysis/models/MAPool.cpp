#include "meta_analysis/analysis/models/MAPool.h"

#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/inference/MAWeightedMean.h"
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
    MAWeightedMean sums;
    for (const std::size_t study : selection) {
        sums.Add(1.0 / studies.variance[study], studies.effectSize[study]);
        prefixes.rows.push_back(
            {InferNormal(sums.Mean(), sums.Variance(), choice.fixed.nullHypothesis, quantile)});
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

/// tau² of every prefix is estimated anew. A prefix is the begin of one copy of the selection.
MAPooledPrefixes PoolRandomPrefixes(const MAStudies& studies, const MASelection& selection,
                                    const MAModelChoice& choice)
{
    const std::vector<double> effectSizes = Selected(studies.effectSize, selection);
    const std::vector<double> variances = Selected(studies.variance, selection);
    MAPooledPrefixes prefixes;
    prefixes.rows.reserve(selection.size());
    for (std::size_t count = 1; count <= selection.size() && !prefixes.status.IsError(); ++count) {
        const MAPooledModel model =
            PoolEffects({{effectSizes.data(), count}, {variances.data(), count}}, choice);
        prefixes.status = model.status;
        if (!model.status.IsError())
            prefixes.rows.push_back({model.effect});
    }
    return prefixes;
}

} // namespace

MAPooledModel PoolEffects(const MAEffects& effects, const MAModelChoice& choice)
{
    return choice.type == MAConst::MODEL_FIXED ? PoolFixedEffect(effects, choice.fixed)
                                               : PoolRandomEffects(effects, choice.random);
}

MAPooledStudies PoolCounts(const std::vector<MATable>& tables, const MAModelChoice& choice)
{
    MAPooledTables pooled = PoolTables(tables, choice.tables);
    return {pooled.model, pooled.correctedTables, std::move(pooled.weights)};
}

MAPooledStudies Pool(const MAStudies& studies, const MAModelChoice& choice)
{
    if (choice.poolsTables)
        return PoolCounts(studies.tables, choice);
    return {PoolEffects({studies.effectSize, studies.variance}, choice), 0, {}};
}

MAPooledStudies Pool(const MAStudies& studies, const MASelection& selection, const MAModelChoice& choice)
{
    if (choice.poolsTables)
        return PoolCounts(Selected(studies.tables, selection), choice);
    const std::vector<double> effectSizes = Selected(studies.effectSize, selection);
    const std::vector<double> variances = Selected(studies.variance, selection);
    return {PoolEffects({effectSizes, variances}, choice), 0, {}};
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
