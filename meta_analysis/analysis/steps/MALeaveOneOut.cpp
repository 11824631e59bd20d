#include "meta_analysis/analysis/steps/MALeaveOneOut.h"

#include "meta_analysis/effectsize/MANaturalScale.h"
#include "meta_analysis/pooling/MADeletedModels.h"

#include <optional>

namespace MA_NAMESPACE {

namespace {

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

} // namespace

MALeaveOneOut LeaveEachOut(const MAStudies& studies, const MAModelChoice& choice)
{
    const std::size_t count = studies.Count() < 2 ? 0 : studies.Count();
    if (choice.poolsTables)
        return WithCounts(studies, choice, [count](const auto& counts, const auto& pooling) {
            ColumnButOne others(counts);
            return PoolEachRest(
                count, [&](std::size_t) { return PoolCounts(others.Others(), pooling).model; },
                [&](std::size_t i) { others.Proceed(i); });
        });
    const MAModelChoice stepChoice = WithoutTau2Interval(choice);
    ColumnButOne effectSizes(studies.effectSize);
    ColumnButOne variances(studies.variance);
    std::optional<MADeletedModels> models;
    if (choice.type != MAConst::MODEL_FIXED && FollowsFromSharedSums(choice.random))
        models.emplace(MAEffects{studies.effectSize, studies.variance}, stepChoice.random);
    const std::vector<double> sizes = HarmonicSizesWithoutEach(ScaleOf(choice), studies.variance);
    return PoolEachRest(
        count,
        [&](std::size_t i) {
            std::optional<MAPooledModel> found = models ? models->Without(i) : std::nullopt;
            if (!found)
                return PoolEffects({effectSizes.Others(), variances.Others()}, stepChoice);
            found->size = sizes[i];
            return *found;
        },
        [&](std::size_t i) {
            effectSizes.Proceed(i);
            variances.Proceed(i);
        });
}

} // namespace MA_NAMESPACE
