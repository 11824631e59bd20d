// The analyses after the overall model, as whole runs on ready-made effect sizes.

#include "SimulatedStudies.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <utility>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

enum Column : int
{
    EFFECT,
    VARIANCE,
    GROUP,
    ORDER
};

MAModelSettings ReadyMadeSettings(MAConst::MODELTYPE model)
{
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(MAConst::INPUT_READY_MADE);
    settings.SetInputEffectSizeIndex(EFFECT);
    settings.SetInputVarianceIndex(VARIANCE);
    settings.SetModelType(model);
    return settings;
}

/// Studies in subgroups of 100, in a mixed order.
VectorRecordIter GroupedStudies(std::size_t count)
{
    const SimulatedStudies studies = SimulateStudies(count);
    std::vector<Record> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        records.emplace_back(std::vector<double>{studies.effectSizes[i], studies.variances[i],
                                                 static_cast<double>(i % (count / 100 + 1)),
                                                 static_cast<double>(i * 7919 % count)});
    return VectorRecordIter(std::move(records));
}

void TimeRuns(benchmark::State& state, const MAModelSettings& settings)
{
    VectorRecordIter records = GroupedStudies(static_cast<std::size_t>(state.range(0)));
    while (state.KeepRunning()) {
        MAContModel analysis(settings);
        if (analysis.RUN(records, KXVarList()).IsError()) {
            state.SkipWithError("the analysis failed");
            break;
        }
    }
}

void Subgroups(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetSubGroupIndex(GROUP);
    TimeRuns(state, settings);
}
BENCHMARK(Subgroups)->Arg(100000)->Unit(benchmark::kMillisecond);

void TrimAndFill(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetIsTRIMFILL(true);
    TimeRuns(state, settings);
}
BENCHMARK(TrimAndFill)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void CumulativeReml(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetCommulativeIndex(ORDER);
    TimeRuns(state, settings);
}
BENCHMARK(CumulativeReml)->Arg(1000)->Unit(benchmark::kMillisecond);

/// Proportions by the transformation whose way back depends on the sizes of each model's studies.
void FreemanTukeyRun(benchmark::State& state)
{
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_MEASURED);
    settings.SetOutcomeMeasure(MAConst::PROPORTION_FREEMAN_TUKEY);
    settings.SetModelType(MAConst::MODEL_FIXED);
    settings.SetEventsIndex(0);
    settings.SetSizeIndex(1);
    settings.SetCommulativeIndex(0);
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<Record> rows;
    rows.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        rows.emplace_back(
            std::vector<double>{static_cast<double>(i % 20), static_cast<double>(20 + i * 7919 % 500)});
    VectorRecordIter records(std::move(rows));
    while (state.KeepRunning()) {
        MAOutcomeModel analysis(settings);
        if (analysis.RUN(records, KXVarList()).IsError()) {
            state.SkipWithError("the analysis failed");
            break;
        }
        benchmark::DoNotOptimize(analysis.GetCumNaturalEstES());
    }
}
BENCHMARK(FreemanTukeyRun)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace
