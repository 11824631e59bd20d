#include "meta_analysis/analysis/steps/MALeaveOneOut.h"

#include "meta_analysis/effectsize/MANaturalScale.h"
#include "meta_analysis/pooling/MADeletedFixedModels.h"
#include "meta_analysis/pooling/MADeletedModels.h"
#include "meta_analysis/pooling/MATablePooling.h"

#include <optional>

namespace MA_NAMESPACE {

namespace {

/// Fewer studies, where a refit has a formula, are refitted as fast as sums are shared, and keep all bits.
constexpr std::size_t fewestForSharing = 256;

/// A column without one of its entries, the first to begin with.
template <class T>
class ColumnButOne
{
public:
    explicit ColumnButOne(const std::vector<T>& all)
        : all_(all), others_(all.begin() + (all.empty() ? 0 : 1), all.end())
    {}

    const std::vector<T>& Others() const { return others_; }

    /// Leaves entry `i` + 1 out in place of entry `i`.
    void Proceed(std::size_t i)
    {
        if (i < others_.size())
            others_[i] = all_[i];
    }

private:
    const std::vector<T>& all_;
    std::vector<T> others_;
};

/// `pool(i)` pools the studies other than i; `proceed(i)` leaves out the study after i.
template <class PoolOthers, class Proceed>
MALeaveOneOut PoolEachRest(std::size_t count, PoolOthers pool, Proceed proceed)
{
    MALeaveOneOut result;
    result.models.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const MAPooledModel model = pool(i);
        result.status = model.status;
        if (result.status.IsError())
            break;
        result.models.push_back(model);
        proceed(i);
    }
    return result;
}

bool SharesSums(const MARandomEffectsChoice& choice, std::size_t count)
{
    const bool isUnweighted = choice.estimator == MAConst::TAU2_HE || choice.estimator == MAConst::TAU2_SJ;
    return FollowsFromSharedSums(choice) && (!isUnweighted || count >= fewestForSharing);
}

/// The models without a study that follow from sums which all deletions share.
class SharedModels
{
public:
    SharedModels(const MAStudies& studies, const MAModelChoice& choice)
        : choice_(choice), sizes_(HarmonicSizesWithoutEach(ScaleOf(choice), studies.variance))
    {
        const MAEffects effects = {studies.effectSize, studies.variance};
        if (choice.type != MAConst::MODEL_FIXED && SharesSums(choice.random, studies.Count()))
            random_.emplace(effects, choice.random);
        if (choice.type == MAConst::MODEL_FIXED && studies.Count() >= fewestForSharing)
            fixed_.emplace(effects);
    }

    std::optional<MAPooledModel> Without(std::size_t i)
    {
        std::optional<MAPooledModel> model = random_  ? random_->Without(i)
                                             : fixed_ ? fixed_->Without(i, AtSize(choice_, sizes_[i]).fixed)
                                                      : std::nullopt;
        if (model)
            model->size = sizes_[i];
        return model;
    }

private:
    const MAModelChoice& choice_;
    std::vector<double> sizes_;
    std::optional<MADeletedModels> random_;
    std::optional<MADeletedFixedModels> fixed_;
};

template <class Counts, class Pooling>
MALeaveOneOut LeaveEachCountOut(const Counts& counts, const Pooling& pooling)
{
    if (counts.size() >= fewestForSharing)
        return {KXStatus(), PoolTablesWithoutEach(counts, pooling)};
    ColumnButOne others(counts);
    return PoolEachRest(
        counts.size(), [&](std::size_t) { return PoolCounts(others.Others(), pooling).model; },
        [&](std::size_t i) { others.Proceed(i); });
}

} // namespace

MALeaveOneOut LeaveEachOut(const MAStudies& studies, const MAModelChoice& choice)
{
    if (studies.Count() < 2)
        return MALeaveOneOut();
    if (choice.poolsTables)
        return WithCounts(studies, choice, [](const auto& counts, const auto& pooling) {
            return LeaveEachCountOut(counts, pooling);
        });
    const MAModelChoice stepChoice = WithoutTau2Interval(choice);
    ColumnButOne effectSizes(studies.effectSize);
    ColumnButOne variances(studies.variance);
    SharedModels models(studies, stepChoice);
    return PoolEachRest(
        studies.Count(),
        [&](std::size_t i) {
            const std::optional<MAPooledModel> found = models.Without(i);
            return found ? *found : PoolEffects({effectSizes.Others(), variances.Others()}, stepChoice);
        },
        [&](std::size_t i) {
            effectSizes.Proceed(i);
            variances.Proceed(i);
        });
}

} // namespace MA_NAMESPACE
