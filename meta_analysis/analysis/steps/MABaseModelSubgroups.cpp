// Subgroups, the test between them, and contrasts of the studies' effects.

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/models/InverseVarianceBuilder.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace MA_NAMESPACE {

namespace {

MAContrastRow RowOf(const MAContinousFixEffectModel& model)
{
    return {model.GetContrastGMeans(),  model.GetContrastStdError(),
            model.GetContrastZVal(),    {model.GetContrastSig(), model.GetContrastLog10Sig()},
            model.GetContrastCILower(), model.GetContrastCIUpper()};
}

/// A NaN is no zero.
bool HasNonZero(const std::vector<double>& coefficients)
{
    return std::any_of(coefficients.begin(), coefficients.end(), [](double c) { return c != 0.0; });
}

} // namespace

KXStatus MABaseModel::BuildSubGroupModel()
{
    InverseVarianceBuilder builder(*this);
    return Guarded(status_, [&] { return BuildSubGroups(builder); });
}

KXStatus MABaseModel::BuildSubGroups(MAModelBuilder& builder)
{
    if (!HasGroupValues())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    for (const MASelection& members : MembersByGroup()) {
        if (builder.Build(members).IsError())
            return status_;
        AppendGroup(members);
        groupSizes_.push_back(static_cast<int>(members.size()));
    }
    if (HasGroups())
        ComputeCochranStatistics();
    groupValues_.push_back(overallGroup);
    return builder.BuildAll();
}

/// One search per study among the distinct values.
std::vector<MASelection> MABaseModel::MembersByGroup() const
{
    std::vector<MASelection> members(static_cast<std::size_t>(groupCount_));
    const auto first = groupValues_.begin();
    const auto last = first + groupCount_;
    const std::size_t count = std::min(studies_.Count(), studies_.groupValue.size());
    for (std::size_t study = 0; study < count; ++study) {
        const auto group = std::lower_bound(first, last, studies_.groupValue[study]);
        if (group != last && *group == studies_.groupValue[study])
            members[static_cast<std::size_t>(group - first)].push_back(study);
    }
    return members;
}

MASelection MABaseModel::AllStudies() const
{
    MASelection all(studies_.Count());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

void MABaseModel::AppendGroup(const MASelection& members)
{
    modelRecords_.push_back(Selected(studies_.recordNumber, members));
    groups_.push_back(members);
}

/// Between-group Q: the weighted squares of the groups' means about the grand mean. The weights are always
/// inverse-variance weights, also where the groups were pooled by a binary method; under random effects each
/// group has its own between-study variance. Borenstein et al. (2009), Introduction to Meta-Analysis, ch. 19.
void MABaseModel::ComputeCochranStatistics()
{
    const auto groupCount = static_cast<std::size_t>(groupCount_);
    const bool isRandom = modelType_ == MAConst::MODEL_RANDOM;
    if (groupCount < 2 || groups_.size() < groupCount)
        return;
    std::vector<double> weights(groupCount, 0.0);
    std::vector<double> means(groupCount, 0.0);
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t g = 0; g < groupCount; ++g) {
        if (isRandom && (g >= results_.tau2.size() || KXMV::IsMissing(results_.tau2[g])))
            return;
        const double tau2 = isRandom ? results_.tau2[g] : 0.0;
        double groupSum = 0.0;
        for (const std::size_t study : groups_[g]) {
            const double weight = 1.0 / (tau2 + studies_.effects.variance[study]);
            weights[g] += weight;
            groupSum += weight * studies_.effects.effectSize[study];
        }
        means[g] = groupSum / weights[g];
        weightSum += weights[g];
        weightedSum += groupSum;
    }
    const double grandMean = weightedSum / weightSum;
    for (std::size_t g = 0; g < groupCount; ++g)
        betweenGroups_.q += weights[g] * (means[g] - grandMean) * (means[g] - grandMean);
    betweenGroups_.df = groupCount_ - 1;
    if (std::isfinite(betweenGroups_.q))
        betweenGroups_.pValue = ChiSquarePValue(betweenGroups_.q, betweenGroups_.df);
}

KXStatus MABaseModel::FixedModelContrastTest()
{
    return Guarded(status_, [this] {
        for (const std::vector<double>& coefficients : studies_.contrastCoefficients) {
            // A model of its own: one that has no variance leaves z and significance as they were.
            MAContinousFixEffectModel model =
                NewContFixEffectModel(studies_.effects.effectSize, studies_.effects.variance);
            model.SetContrastCoef(&coefficients);
            const KXStatus tested = model.ContrastTest();
            AddWarning(tested);
            if (tested.IsWarning())
                contrastStatus_.push_back(2);
            else
                contrastStatus_.push_back(HasNonZero(coefficients) ? 0 : 1);
            contrasts_.push_back(RowOf(model));
        }
        return status_;
    });
}

} // namespace MA_NAMESPACE
