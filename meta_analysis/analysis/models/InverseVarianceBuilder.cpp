#include "meta_analysis/analysis/models/InverseVarianceBuilder.h"

#include "meta_analysis/analysis/models/MAModelRows.h"
#include "meta_analysis/inference/MAInference.h"

namespace MA_NAMESPACE {

KXStatus MABaseModel::InverseVarianceBuilder::BuildAll()
{
    return analysis_.BuildModel(analysis_.studies_.effects.effectSize, analysis_.studies_.effects.variance);
}

KXStatus MABaseModel::InverseVarianceBuilder::Build(const MASelection& selection)
{
    const MAEffectColumns& effects = analysis_.studies_.effects;
    return analysis_.BuildModel(Selected(effects.effectSize, selection),
                                Selected(effects.variance, selection));
}

KXStatus MABaseModel::InverseVarianceBuilder::BuildTest(const MASelection& selection)
{
    const MAEffectColumns& effects = analysis_.studies_.effects;
    return analysis_.BuildOnlyTestModel(Selected(effects.effectSize, selection),
                                        Selected(effects.variance, selection));
}

KXStatus MABaseModel::InverseVarianceBuilder::BuildPrefixes(const MASelection& selection)
{
    return analysis_.modelType_ == MAConst::MODEL_FIXED ? BuildFixedPrefixes(selection)
                                                        : BuildRandomPrefixes(selection);
}

/// On running sums, taken in the order of a fit of each prefix, so that the results are the same.
KXStatus MABaseModel::InverseVarianceBuilder::BuildFixedPrefixes(const MASelection& selection)
{
    const MAEffectColumns& effects = analysis_.studies_.effects;
    const double quantile = TwoSidedNormalQuantile(analysis_.alpha_);
    const double nullHypothesis = analysis_.settings_->GetNullHypothesis();
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (const std::size_t study : selection) {
        const double weight = 1.0 / effects.variance[study];
        weightSum += weight;
        weightedSum += weight * effects.effectSize[study];
        const double mean = weightedSum / weightSum;
        const double variance = 1.0 / weightSum;
        const MAEstimate inference = InferNormal(mean, variance, nullHypothesis, quantile);
        analysis_.results_.models.push_back({mean, variance, inference.stdError, inference.statistic,
                                             inference.pValue, inference.ciLower, inference.ciUpper});
    }
    analysis_.status_ = KXStatus();
    RecordWeights(selection, 0.0);
    return analysis_.status_;
}

/// tau² of every prefix is estimated anew; the vectors grow with the prefix, so that no step copies.
KXStatus MABaseModel::InverseVarianceBuilder::BuildRandomPrefixes(const MASelection& selection)
{
    std::vector<double> effectSizes;
    std::vector<double> variances;
    effectSizes.reserve(selection.size());
    variances.reserve(selection.size());
    double tau2 = 0.0;
    for (const std::size_t study : selection) {
        effectSizes.push_back(analysis_.studies_.effects.effectSize[study]);
        variances.push_back(analysis_.studies_.effects.variance[study]);
        MARandomEffectModel model = analysis_.NewStepModel(effectSizes, variances);
        analysis_.status_ = model.EstimateMeanESStats();
        if (analysis_.status_.IsError())
            return analysis_.status_;
        analysis_.results_.models.push_back(RowOf(model));
        tau2 = model.GetBetweenStudyVariance();
    }
    RecordWeights(selection, tau2);
    return analysis_.status_;
}

/// Of a selection that is all studies: in study order, whatever the order of the selection.
void MABaseModel::InverseVarianceBuilder::RecordWeights(const MASelection& selection, double tau2)
{
    if (selection.size() == analysis_.studies_.Count())
        analysis_.RecordInverseVarianceWeights(analysis_.studies_.effects.variance, tau2);
}

} // namespace MA_NAMESPACE
