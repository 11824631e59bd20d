#include "meta_analysis/bulk/MABulkPooling.h"

#include "meta_analysis/bulk/MABulkColumns.h"
#include "meta_analysis/bulk/MABulkThreads.h"
#include "meta_analysis/bulk/MAGatheredSet.h"
#include "meta_analysis/bulk/lanes/MALanePooler.h"
#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <array>
#include <atomic>
#include <cmath>
#include <exception>
#include <optional>
#include <vector>

namespace MA_NAMESPACE {

namespace {

/// Degrees of freedom whose quantiles are remembered. Those of larger sets cost less than the sets.
constexpr std::size_t mostRemembered = 1024;

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
    std::atomic<std::size_t> next = 0; ///< the first set that no thread has taken
    std::atomic<bool> hasMemory = true;
};

/// What one thread pools with: small sets side by side where the model allows, others alone.
template <class Sets, class Choice>
class SetPooler
{
public:
    explicit SetPooler(BulkCall<Sets, Choice>& call)
        : call_(call),
          remembered_(std::min(call.largestCount + 1, mostRemembered)),
          quantiles_(call.choice.alpha, remembered_),
          alone_(call.largestCount)
    {
        if (!MALanePooler::Takes(call.choice, call.wanted))
            return;
        const MALaneKernels& kernels = WidestLaneKernels();
        lanes_.emplace(kernels);
        inLanes_.assign(kernels.laneCount,
                        MAGatheredSet(std::min(call.largestCount, MALanePooler::mostStudies)));
    }

    void PoolAll()
    {
        std::size_t first = call_.next;
        while (first < call_.sets.setCount) {
            const std::size_t end = EndOfChunk(call_.sets, first);
            if (!call_.next.compare_exchange_weak(first, end))
                continue;
            PoolChunk(first, end);
            first = call_.next;
        }
    }

private:
    void PoolChunk(std::size_t first, std::size_t end)
    {
        for (std::size_t set = first; set < end; ++set) {
            if (AddToLanes(set))
                continue;
            Take(set, alone_);
            PutAlone(set, alone_);
        }
        PoolLanes();
    }

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

    BulkCall<Sets, Choice>& call_;
    std::vector<MAQuantiles::Remembered> remembered_;
    MAQuantiles quantiles_;
    MAGatheredSet alone_;
    std::optional<MALanePooler> lanes_;
    std::vector<MAGatheredSet> inLanes_;
    std::array<std::size_t, mostLanes> setOfLane_{};
    std::size_t filled_ = 0;
};

/// A thread for which there is no memory leaves its part to the others.
template <class Sets, class Choice>
KXStatus PoolAll(const Sets& sets, const Choice& choice, const MABulkResults& results, int threadCount)
{
    using Pooler = SetPooler<Sets, Choice>;
    BulkCall<Sets, Choice> call{sets, choice, results, WantedBy(results), LargestCount(sets)};
    Pooler own(call);
    std::atomic<bool> isOwnTaken = false;
    const auto work = [&]() noexcept {
        try {
            std::optional<Pooler> others;
            Pooler& pooler = isOwnTaken.exchange(true) ? others.emplace(call) : own;
            try {
                pooler.PoolAll();
            } catch (const std::exception&) {
                call.hasMemory = false;
            }
        } catch (const std::exception&) {
        }
    };
    RunOnThreads(ThreadCountOf(threadCount, ChunkCount(sets)), work);
    return call.hasMemory ? KXStatus() : KXStatus(MAStatusCode::OUT_OF_MEMORY);
}

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

bool IsBetween(int value, int first, int last)
{
    return value >= first && value <= last;
}

bool IsKnown(const MARandomEffectsChoice& choice)
{
    using namespace MAConst;
    return IsEstimator(choice.estimator) && std::isfinite(choice.limits.tolerance) &&
           IsBetween(choice.knappHartung, KNAPP_HARTUNG_NONE, KNAPP_HARTUNG_IF_HETEROGENEOUS) &&
           IsBetween(choice.search, TAU2_SEARCH_SCORING, TAU2_SEARCH_GLOBAL) &&
           IsBetween(choice.tau2Interval, TAU2_INTERVAL_NONE, TAU2_INTERVAL_PROFILE_LIKELIHOOD) &&
           IsBetween(choice.prediction, PREDICTION_T_K_MINUS_2, PREDICTION_NORMAL);
}

bool IsKnown(const MAFixedEffectChoice& choice)
{
    return std::isfinite(choice.nullHypothesis);
}

template <class Choice>
KXStatus Check(const Choice& choice)
{
    if (!(choice.alpha > 0.0 && choice.alpha < 1.0))
        return KXStatus(MAStatusCode::BULK_ALPHA_OUTSIDE);
    return IsKnown(choice) ? KXStatus() : KXStatus(MAStatusCode::BULK_CHOICE_UNKNOWN);
}

template <class Sets>
KXStatus PoolUsable(const Sets& sets, const MABulkModel& model, const MABulkResults& results,
                    int threadCount) noexcept
{
    KXStatus status;
    return Guarded(status, [&]() -> KXStatus {
        if (!AreUsable(sets))
            return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
        return std::visit(
            [&](const auto& choice) {
                const KXStatus checked = Check(choice);
                return checked.IsError() ? checked
                                         : PoolAll(sets, ChoiceFor(results, choice), results, threadCount);
            },
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
