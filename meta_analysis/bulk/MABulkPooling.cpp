#include "meta_analysis/bulk/MABulkPooling.h"

#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <limits>
#include <thread>
#include <vector>

namespace MA_NAMESPACE {

namespace {

/// Sets that a thread takes at a time.
constexpr std::size_t chunkSize = 1024;

/// The studies of one set that can be pooled, gathered in memory that all sets of a thread share.
class GatheredSet
{
public:
    explicit GatheredSet(std::size_t largestCount) : effectSizes_(largestCount), variances_(largestCount) {}

    void Restart() { count_ = leftOut_ = 0; }
    void Add(double effectSize, double variance)
    {
        if (IsPoolable(effectSize, variance)) {
            effectSizes_[count_] = effectSize;
            variances_[count_++] = variance;
        } else if (!std::isnan(effectSize) && !std::isnan(variance)) {
            ++leftOut_;
        }
    }
    MAEffects Studies() const { return {{effectSizes_.data(), count_}, {variances_.data(), count_}}; }
    std::size_t LeftOut() const { return leftOut_; }

private:
    std::vector<double> effectSizes_;
    std::vector<double> variances_;
    std::size_t count_ = 0;
    std::size_t leftOut_ = 0;
};

void Gather(const MARaggedSets& sets, std::size_t set, GatheredSet& gathered)
{
    gathered.Restart();
    for (std::size_t i = sets.offsets[set]; i < sets.offsets[set + 1]; ++i)
        gathered.Add(sets.effectSizes[i], sets.variances[i]);
}

void Gather(const MABlockSets& sets, std::size_t set, GatheredSet& gathered)
{
    gathered.Restart();
    for (std::size_t study = 0; study < sets.studyCount; ++study)
        gathered.Add(sets.effectSizes.At(study, set), sets.variances.At(study, set));
}

std::size_t LargestCount(const MARaggedSets& sets)
{
    std::size_t largest = 0;
    for (std::size_t set = 0; set < sets.setCount; ++set)
        largest = std::max(largest, sets.offsets[set + 1] - sets.offsets[set]);
    return largest;
}

std::size_t LargestCount(const MABlockSets& sets)
{
    return sets.studyCount;
}

bool AreUsable(const MARaggedSets& sets)
{
    if (sets.setCount == 0)
        return true;
    if (sets.offsets == nullptr || !std::is_sorted(sets.offsets, sets.offsets + sets.setCount + 1))
        return false;
    const bool isEmpty = sets.offsets[sets.setCount] == sets.offsets[0];
    return isEmpty || (sets.effectSizes != nullptr && sets.variances != nullptr);
}

bool AreUsable(const MABlockSets& sets)
{
    const bool isEmpty = sets.setCount == 0 || sets.studyCount == 0;
    return isEmpty || (sets.effectSizes.values != nullptr && sets.variances.values != nullptr);
}

MAPooledModel Pool(const MAEffects& studies, const MARandomEffectsChoice& choice)
{
    return PoolRandomEffects(studies, choice);
}

MAPooledModel Pool(const MAEffects& studies, const MAFixedEffectChoice& choice)
{
    return PoolFixedEffect(studies, choice);
}

int StatusOf(const MAPooledModel& model)
{
    if (model.status.IsError())
        return model.status.GetCode();
    return model.tau2Results.isDoubtful ? MAStatusCode::TAU2_DOUBTFUL : 0;
}

double OrNaN(double value)
{
    return KXMV::IsMissing(value) ? std::numeric_limits<double>::quiet_NaN() : value;
}

template <class Number>
void Put(Number* column, std::size_t set, Number value)
{
    if (column != nullptr)
        column[set] = value;
}

void PutAll(const MABulkResults& results, std::size_t set, const MAPooledModel& model, int status)
{
    Put(results.estimate, set, OrNaN(model.effect.estimate));
    Put(results.stdError, set, OrNaN(model.effect.stdError));
    Put(results.statistic, set, OrNaN(model.effect.statistic));
    Put(results.pValue, set, OrNaN(model.effect.pValue.value));
    if (results.minusLog10P != nullptr)
        results.minusLog10P[set] = -OrNaN(model.effect.pValue.Log10());
    Put(results.ciLower, set, OrNaN(model.effect.ciLower));
    Put(results.ciUpper, set, OrNaN(model.effect.ciUpper));
    Put(results.tau2, set, OrNaN(model.tau2));
    Put(results.tau2Lower, set, OrNaN(model.tau2Results.lower));
    Put(results.tau2Upper, set, OrNaN(model.tau2Results.upper));
    Put(results.q, set, OrNaN(model.homogeneity.q));
    Put(results.qDf, set, model.homogeneity.df);
    Put(results.qPValue, set, OrNaN(model.homogeneity.pValue.value));
    Put(results.i2, set, OrNaN(model.heterogeneity.i2));
    Put(results.predictionLower, set, OrNaN(model.prediction.lower));
    Put(results.predictionUpper, set, OrNaN(model.prediction.upper));
    Put(results.status, set, status);
}

template <class Choice>
void PoolSet(const GatheredSet& gathered, const Choice& choice, const MABulkResults& results, std::size_t set)
{
    const MAEffects studies = gathered.Studies();
    Put(results.studyCount, set, static_cast<int>(studies.Count()));
    Put(results.leftOut, set, static_cast<int>(gathered.LeftOut()));
    if (studies.Count() == 0) {
        PutAll(results, set, MAPooledModel(), MAStatusCode::NO_STUDY_IN_RUN);
        return;
    }
    const MAPooledModel model = Pool(studies, choice);
    PutAll(results, set, model.status.IsError() ? MAPooledModel() : model, StatusOf(model));
}

template <class Sets, class Choice>
KXStatus PoolAll(const Sets& sets, const Choice& choice, const MABulkResults& results, int threadCount)
{
    std::atomic<std::size_t> nextChunk = 0;
    std::atomic<bool> hasMemory = true;
    const std::size_t largestCount = LargestCount(sets);
    const auto work = [&]() noexcept {
        try {
            GatheredSet gathered(largestCount);
            for (;;) {
                const std::size_t first = nextChunk++ * chunkSize;
                if (first >= sets.setCount)
                    return;
                for (std::size_t set = first; set < std::min(first + chunkSize, sets.setCount); ++set) {
                    Gather(sets, set, gathered);
                    PoolSet(gathered, choice, results, set);
                }
            }
        } catch (const std::exception&) {
            hasMemory = false;
        }
    };
    const std::size_t chunks = (sets.setCount + chunkSize - 1) / chunkSize;
    const std::size_t wanted = threadCount > 0 ? static_cast<std::size_t>(threadCount)
                                               : std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> others;
    for (std::size_t i = 1; i < std::min(wanted, chunks); ++i)
        others.emplace_back(work);
    work();
    for (std::thread& other : others)
        other.join();
    return hasMemory ? KXStatus() : KXStatus(MAStatusCode::OUT_OF_MEMORY);
}

/// The global search needs no check of tau² but where it can prove nothing.
MARandomEffectsChoice Checked(MARandomEffectsChoice choice)
{
    choice.checksTau2 = true;
    return choice;
}

MAFixedEffectChoice Checked(const MAFixedEffectChoice& choice)
{
    return choice;
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
            [&](const auto& choice) { return PoolAll(sets, Checked(choice), results, threadCount); }, model);
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
