#include "meta_analysis/analysis/steps/MAInfluence.h"

#include "meta_analysis/analysis/steps/MALeaveOneOut.h"
#include "meta_analysis/platform/common/Square.h"

#include <limits>

namespace MA_NAMESPACE {

namespace {

/// What is left must have a heterogeneity.
constexpr std::size_t fewestStudies = 3;

/// As the counts of Mantel and Haenszel have not.
bool HasInverseVarianceWeights(const MAModelChoice& choice)
{
    return !choice.poolsTables ||
           (!choice.poolsRates && choice.tables.measure == MAConst::BIN_PETO_ODDS_RATIO);
}

bool IsAdjusted(const MAModelChoice& choice)
{
    return choice.type != MAConst::MODEL_FIXED && choice.random.knappHartung != MAConst::KNAPP_HARTUNG_NONE;
}

MAModelChoice WithoutKnappHartung(MAModelChoice choice)
{
    choice.random.knappHartung = MAConst::KNAPP_HARTUNG_NONE;
    return ModelOfStep(choice);
}

/// A missing value is a number, with which nothing may be computed.
double NumberOf(double value)
{
    return KXMV::IsMissing(value) ? std::numeric_limits<double>::quiet_NaN() : value;
}

double Tau2Of(const MAPooledModel& model)
{
    return KXMV::IsMissing(model.tau2) ? 0.0 : model.tau2;
}

MAStudyInfluence InfluenceOf(const MAStudies& studies, std::size_t i, const MAPooledModel& all,
                             const MAPooledModel& others, double share)
{
    MAStudyInfluence influence;
    influence.hat = share;
    influence.weight = 100.0 * share;
    influence.qDeleted = others.homogeneity.q;
    const double fit = NumberOf(all.effect.estimate);
    const double fitVariance = NumberOf(all.effect.variance);
    const double change = fit - NumberOf(others.effect.estimate);
    const double varianceDeleted = NumberOf(others.effect.variance);
    SetInfluence({NumberOf(studies.effectSize[i]), NumberOf(studies.variance[i]), fit, change,
                  varianceDeleted, Tau2Of(all), Tau2Of(others), Square(change) / fitVariance,
                  varianceDeleted / fitVariance},
                 influence);
    if (KXMV::IsMissing(all.tau2))
        influence.tau2Deleted = KXMV::Missing();
    return influence;
}

/// What does not need the model of the others.
MAStudyInfluence WithoutDeletion(const MAStudyInfluence& influence)
{
    MAStudyInfluence kept;
    kept.hat = influence.hat;
    kept.weight = influence.weight;
    kept.baujatX = influence.baujatX;
    return kept;
}

MAInfluence InfluenceOfEach(const MAStudies& studies, const MAModelChoice& choice, const MAPooledStudies& all,
                            const std::vector<MAPooledModel>& others)
{
    MAInfluence result;
    result.status = others.back().status;
    const std::vector<double> weights = PoolingWeights(studies, all);
    double weightSum = 0.0;
    for (const double weight : weights)
        weightSum += weight;
    const bool hasOthers = studies.Count() >= fewestStudies;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        MAStudyInfluence influence = InfluenceOf(studies, i, all.model, others[i], weights[i] / weightSum);
        if (!HasInverseVarianceWeights(choice))
            influence.dffits = KXMV::Missing();
        result.table.studies.push_back(hasOthers ? influence : WithoutDeletion(influence));
        result.table.isComplete &= !KXMV::IsMissing(result.table.studies.back().covarianceRatio);
    }
    ApplyInfluenceRules(studies.Count(), 1, result.table);
    return result;
}

} // namespace

MAInfluence MeasureInfluence(const MAStudies& studies, const MAModelChoice& choice)
{
    return MeasureInfluence(studies, choice, {});
}

MAInfluence MeasureInfluence(const MAStudies& studies, const MAModelChoice& choice,
                             const std::vector<MAPooledModel>& leaveOneOut)
{
    if (studies.Count() < 2)
        return MAInfluence();
    const MAModelChoice unscaled = WithoutKnappHartung(choice);
    const MAPooledStudies all = Pool(studies, unscaled);
    if (all.model.status.IsError())
        return {all.model.status, {}};
    if (!IsAdjusted(choice) && leaveOneOut.size() == studies.Count())
        return InfluenceOfEach(studies, unscaled, all, leaveOneOut);
    const MALeaveOneOut others = LeaveEachOut(studies, unscaled);
    if (others.status.IsError())
        return {others.status, {}};
    return InfluenceOfEach(studies, unscaled, all, others.models);
}

} // namespace MA_NAMESPACE
