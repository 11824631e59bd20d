#include "meta_analysis/analysis/models/MAPool.h"

#include "meta_analysis/effectsize/MANaturalScale.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MAPrefixModels.h"
#include "meta_analysis/pooling/MATablePooling.h"

#include <optional>
#include <utility>

namespace MA_NAMESPACE {

namespace {

MAPooledModel PoolOnAnalysisScale(const MAEffects& effects, const MAModelChoice& choice)
{
    return choice.type == MAConst::MODEL_FIXED ? PoolFixedEffect(effects, choice.fixed)
                                               : PoolRandomEffects(effects, choice.random);
}

MAPooledStudies PooledStudiesOf(MAPooledTables pooled)
{
    return {pooled.model, pooled.correctedTables, std::move(pooled.weights)};
}

/// On running sums, taken in the order of a fit of each prefix, so that the results are the same.
MAPooledPrefixes PoolFixedPrefixes(const MAStudies& studies, const MASelection& selection,
                                   const MAModelChoice& choice)
{
    const double quantile = TwoSidedNormalQuantile(choice.fixed.alpha);
    MAPooledPrefixes prefixes;
    prefixes.rows.reserve(selection.size());
    MAWeightedMean sums;
    MAHarmonicSize size(ScaleOf(choice));
    for (const std::size_t study : selection) {
        sums.Add(1.0 / studies.variance[study], studies.effectSize[study]);
        size.Add(studies.variance[study]);
        const double null = NullHypothesisAt(choice, size.Mean());
        prefixes.rows.push_back({InferNormal(sums.Mean(), sums.Variance(), null, quantile), 0, size.Mean()});
    }
    return prefixes;
}

MAPooledPrefixes PoolCountPrefixes(const MAStudies& studies, const MASelection& selection,
                                   const MAModelChoice& choice)
{
    MAPooledPrefixes prefixes;
    WithCounts(studies, choice, [&](const auto& counts, const auto& pooling) {
        for (const MATableEstimate& pooled : PoolTablePrefixes(Selected(counts, selection), pooling))
            prefixes.rows.push_back({pooled.effect, pooled.correctedTables});
    });
    return prefixes;
}

/// The random-effects models of prefixes, from sums that they share where these do, else each anew.
class RandomPrefixes
{
public:
    RandomPrefixes(const MAEffects& studies, const MAModelChoice& choice)
        : studies_(studies), choice_(choice), shared_(studies, choice.random)
    {}

    /// The model of the next study and those before it.
    MAPooledModel Next()
    {
        ++count_;
        std::optional<MAPooledModel> model = shared_.Next();
        return model ? *model
                     : PoolOnAnalysisScale(
                           {studies_.effectSizes.first(count_), studies_.variances.first(count_)}, choice_);
    }

private:
    MAEffects studies_;
    const MAModelChoice& choice_;
    MAPrefixModels shared_;
    std::size_t count_ = 0;
};

/// Natural values of the choice depend on the size of each prefix, but the mean does not depend on them.
MAPooledPrefixes PoolRandomPrefixes(const MAStudies& studies, const MASelection& selection,
                                    const MAModelChoice& choice)
{
    const std::vector<double> effectSizes = Selected(studies.effectSize, selection);
    const std::vector<double> variances = Selected(studies.variance, selection);
    RandomPrefixes models({effectSizes, variances}, choice);
    MAHarmonicSize size(ScaleOf(choice));
    MAPooledPrefixes prefixes;
    prefixes.rows.reserve(selection.size());
    for (const double variance : variances) {
        const MAPooledModel model = models.Next();
        prefixes.status = model.status;
        if (model.status.IsError())
            break;
        size.Add(variance);
        prefixes.rows.push_back({model.effect, 0, size.Mean()});
    }
    return prefixes;
}

} // namespace

MAModelChoice ChoiceFor(const MAEffects& effects, const MAModelChoice& choice)
{
    return AtSize(choice, HarmonicSize(ScaleOf(choice), effects.variances));
}

MAPooledModel PoolEffects(const MAEffects& effects, const MAModelChoice& choice)
{
    if (!choice.natural.has_value())
        return PoolOnAnalysisScale(effects, choice);
    const double size = HarmonicSize(choice.natural->scale, effects.variances);
    MAPooledModel model = PoolOnAnalysisScale(effects, AtSize(choice, size));
    model.size = size;
    return model;
}

MAPooledStudies PoolCounts(const std::vector<MATable>& tables, const MATablePoolingChoice& choice)
{
    return PooledStudiesOf(PoolTables(tables, choice));
}

MAPooledStudies PoolCounts(const std::vector<MAGroupRates>& rates, const MARatePoolingChoice& choice)
{
    return PooledStudiesOf(PoolTables(rates, choice));
}

MAPooledStudies Pool(const MAStudies& studies, const MAModelChoice& choice)
{
    if (choice.poolsTables)
        return WithCounts(studies, choice, [](const auto& counts, const auto& pooling) {
            return PoolCounts(counts, pooling);
        });
    return {PoolEffects({studies.effectSize, studies.variance}, choice), 0, {}};
}

MAPooledStudies Pool(const MAStudies& studies, const MASelection& selection, const MAModelChoice& choice)
{
    if (choice.poolsTables)
        return WithCounts(studies, choice, [&](const auto& counts, const auto& pooling) {
            return PoolCounts(Selected(counts, selection), pooling);
        });
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
