#include "meta_analysis/bulk/MABulkPooling.h"

#include "meta_analysis/bulk/MABulkChecks.h"
#include "meta_analysis/bulk/MABulkColumns.h"
#include "meta_analysis/bulk/MABulkWork.h"
#include "meta_analysis/bulk/MAGatheredSet.h"
#include "meta_analysis/bulk/MALanePooler.h"
#include "meta_analysis/bulk/lanes/MALaneCode.h"
#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace MA_NAMESPACE {

namespace {

MAPooledModel Pool(const MAEffects& studies, const MARandomEffectsChoice& choice,
                   const MAWantedResults& wanted, MAQuantiles& quantiles)
{
    return PoolRandomEffects(studies, choice, wanted, quantiles);
}

MAPooledModel Pool(const MAEffects& studies, const MAFixedEffectChoice& choice, const MAWantedResults& wanted,
                   MAQuantiles& quantiles)
{
    return PoolFixedEffect(studies, choice, wanted, quantiles);
}

/// One call: what all of its threads share.
template <class Sets, class Choice>
struct BulkCall
{
    const Sets& sets;
    const Choice& choice;
    const MABulkResults& results;
    MAWantedResults wanted;
    std::size_t largestCount;
};

/// What one thread pools with: small sets side by side where the model allows, others alone.
template <class Sets, class Choice>
class SetPooler
{
public:
    explicit SetPooler(const BulkCall<Sets, Choice>& call)
        : call_(call),
          remembered_(MAQuantiles::MemoryFor(call.largestCount)),
          quantiles_(call.choice.alpha, remembered_),
          alone_(call.largestCount)
    {
        if (!MALanePooler::Takes(call.choice, call.wanted))
            return;
        const MALaneKernels& kernels = WidestLaneCode().kernels;
        lanes_.emplace(kernels);
        inLanes_.assign(kernels.laneCount,
                        MAGatheredSet(std::min(call.largestCount, MALanePooler::mostStudies)));
    }

    void operator()(std::size_t first, std::size_t end)
    {
        for (std::size_t set = first; set < end; ++set) {
            if (AddToLanes(set))
                continue;
            Take(set, alone_);
            PutAlone(set, alone_);
        }
        PoolLanes();
    }

private:
    void Take(std::size_t set, MAGatheredSet& gathered)
    {
        Gather(call_.sets, set, gathered);
        PutCounts(call_.results, set, gathered.Count(), gathered.LeftOut());
    }

    void PutAlone(std::size_t set, const MAGatheredSet& gathered)
    {
        if (gathered.Count() == 0)
            PutMissing(call_.results, set, MAStatusCode::NO_STUDY_IN_RUN);
        else
            PutModel(call_.results, set, Pool(gathered.Studies(), call_.choice, call_.wanted, quantiles_));
    }

    bool AddToLanes(std::size_t set)
    {
        if (!lanes_.has_value() || StudyCount(call_.sets, set) > MALanePooler::mostStudies)
            return false;
        Take(set, inLanes_[filled_]);
        setOfLane_[filled_++] = set;
        if (filled_ == inLanes_.size())
            PoolLanes();
        return true;
    }

    void PoolLanes()
    {
        if (filled_ == 0)
            return;
        lanes_->Load({inLanes_.data(), filled_});
        const MALanePooler::Models& models = lanes_->Pool(call_.choice, call_.wanted, quantiles_);
        for (std::size_t lane = 0; lane < filled_; ++lane) {
            if (models[lane].has_value())
                PutModel(call_.results, setOfLane_[lane], *models[lane]);
            else
                PutAlone(setOfLane_[lane], inLanes_[lane]);
        }
        filled_ = 0;
    }

    const BulkCall<Sets, Choice>& call_;
    std::vector<MAQuantiles::Remembered> remembered_;
    MAQuantiles quantiles_;
    MAGatheredSet alone_;
    std::optional<MALanePooler> lanes_;
    std::vector<MAGatheredSet> inLanes_;
    std::array<std::size_t, mostLanes> setOfLane_{};
    std::size_t filled_ = 0;
};

/// The check of tau² is wanted with the status; the global search needs none but where it can prove nothing.
MARandomEffectsChoice ChoiceFor(const MABulkResults& results, MARandomEffectsChoice choice)
{
    choice.checksTau2 = results.status != nullptr;
    choice.threshold = KXMV::Missing();
    return choice;
}

MAFixedEffectChoice ChoiceFor(const MABulkResults&, const MAFixedEffectChoice& choice)
{
    return choice;
}

bool AreKnown(const MARandomEffectsChoice& choice)
{
    return IsKnown(choice.estimator) && IsKnown(choice.search) && IsKnown(choice.knappHartung) &&
           IsKnown(choice.tau2Interval) &&
           IsBetween(choice.prediction, MAConst::PREDICTION_T_K_MINUS_2, MAConst::PREDICTION_NORMAL) &&
           std::isfinite(choice.limits.tolerance);
}

bool AreKnown(const MAFixedEffectChoice& choice)
{
    return std::isfinite(choice.nullHypothesis);
}

template <class Sets, class Choice>
KXStatus PoolBy(const Choice& given, const Sets& sets, const MABulkResults& results, int threadCount)
{
    const KXStatus checked = CheckChoices(given.alpha, AreKnown(given));
    if (checked.IsError())
        return checked;
    const Choice choice = ChoiceFor(results, given);
    const BulkCall<Sets, Choice> call{sets, choice, results, WantedBy(results), LargestCount(sets)};
    return WorkOnSets<SetPooler<Sets, Choice>>(call, threadCount);
}

template <class Sets>
KXStatus PoolUsable(const Sets& sets, const MABulkModel& model, const MABulkResults& results,
                    int threadCount) noexcept
{
    KXStatus status;
    return Guarded(status, [&]() -> KXStatus {
        if (!AreUsable(sets))
            return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
        return std::visit([&](const auto& choice) { return PoolBy(choice, sets, results, threadCount); },
                          model);
    });
}

} // namespace

KXStatus PoolSets(const MARaggedSets& sets, const MABulkModel& model, const MABulkResults& results,
                  int threadCount) noexcept
{
    return PoolUsable(sets, model, results, threadCount);
}

KXStatus PoolSets(const MABlockSets& sets, const MABulkModel& model, const MABulkResults& results,
                  int threadCount) noexcept
{
    return PoolUsable(sets, model, results, threadCount);
}

} // namespace MA_NAMESPACE
