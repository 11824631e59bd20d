#include "meta_analysis/inference/MAStudyInfluence.h"

#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/settings/MAConst.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

double FiniteOrMissing(double value)
{
    return std::isfinite(value) ? value : KXMV::Missing();
}

bool Exceeds(double value, double cutoff)
{
    return !KXMV::IsMissing(value) && std::abs(value) > cutoff;
}

int RuleIf(bool isMet, MAConst::INFLUENCERULE rule)
{
    return isMet ? rule : 0;
}

} // namespace

void SetInfluence(const MADeletionChange& change, MAStudyInfluence& influence)
{
    const double ownVariance = change.variance + change.tau2Deleted;
    const double distance = change.effect - change.fit;
    influence.tau2Deleted = FiniteOrMissing(change.tau2Deleted);
    influence.residual =
        FiniteOrMissing((distance + change.fitChange) / std::sqrt(ownVariance + change.fitVarianceDeleted));
    influence.dffits = FiniteOrMissing(change.fitChange / std::sqrt(influence.hat * ownVariance));
    influence.cookDistance = FiniteOrMissing(change.cookDistance);
    influence.covarianceRatio = FiniteOrMissing(change.covarianceRatio);
    influence.baujatX = FiniteOrMissing(Square(distance) / (change.variance + change.tau2));
    influence.baujatY = FiniteOrMissing(Square(change.fitChange) / change.fitVarianceDeleted);
}

void ApplyInfluenceRules(std::size_t count, std::size_t rank, MAInfluenceTable& table)
{
    const auto k = static_cast<double>(count);
    const auto p = static_cast<double>(rank);
    const double residual = KXDistFun::IdfStdNorm(0.975);
    const double dffits =
        3.0 * std::sqrt(p / (k - p)); // infinite or NaN without residual df, which no value exceeds
    const double cook = KXDistFun::IdfChi(0.5, p);
    const double hat = 3.0 * p / k;
    constexpr double dfbetas = 1.0;
    table.cutoffs = {residual, FiniteOrMissing(dffits), cook, hat, dfbetas};
    for (MAStudyInfluence& study : table.studies) {
        const bool hasLargeDfbetas = std::any_of(study.dfbetas.begin(), study.dfbetas.end(),
                                                 [](double value) { return Exceeds(value, dfbetas); });
        study.rules = RuleIf(Exceeds(study.residual, residual), MAConst::INFLUENCE_RESIDUAL) +
                      RuleIf(Exceeds(study.dffits, dffits), MAConst::INFLUENCE_DFFITS) +
                      RuleIf(Exceeds(study.cookDistance, cook), MAConst::INFLUENCE_COOK) +
                      RuleIf(Exceeds(study.hat, hat), MAConst::INFLUENCE_HAT) +
                      RuleIf(hasLargeDfbetas, MAConst::INFLUENCE_DFBETAS);
    }
}

} // namespace MA_NAMESPACE
