#include "meta_analysis/bulk/MABulkPooling.h"

#include "meta_analysis/bulk/MABulkColumns.h"
#include "meta_analysis/bulk/MABulkThreads.h"
#include "meta_analysis/bulk/MAGatheredSet.h"
#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

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

/// What one thread pools with.
template <class Sets, class Choice>
class SetPooler
{
public:
    explicit SetPooler(BulkCall<Sets, Choice>& call)
        : call_(call),
          remembered_(std::min(call.largestCount + 1, mostRemembered)),
          quantiles_(call.choice.alpha, remembered_),
          gathered_(call.largestCount)
    {}

    void PoolAll()
    {
        std::size_t first = call_.next;
        for (;;) {
            if (first >= call_.sets.setCount)
                return;
            const std::size_t end = EndOfChunk(call_.sets, first);
            if (!call_.next.compare_exchange_weak(first, end))
                continue;
            for (std::size_t set = first; set < end; ++set)
                PoolSet(set);
            first = call_.next;
        }
    }

private:
    void PoolSet(std::size_t set)
    {
        Gather(call_.sets, set, gathered_);
        PutCounts(call_.results, set, gathered_.Count(), gathered_.LeftOut());
        if (gathered_.Count() == 0)
            PutMissing(call_.results, set, MAStatusCode::NO_STUDY_IN_RUN);
        else
            PutModel(call_.results, set, Pool(gathered_.Studies(), call_.choice, call_.wanted, quantiles_));
    }

    BulkCall<Sets, Choice>& call_;
    std::vector<MAQuantiles::Remembered> remembered_;
    MAQuantiles quantiles_;
    MAGatheredSet gathered_;
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
    const std::size_t mostThreads = sets.setCount == 0 ? 1 : sets.setCount;
    RunOnThreads(ThreadCountOf(threadCount, mostThreads), work);
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
