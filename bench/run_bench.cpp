// Whole analyses, from the host's records to the results.

#include "PeakMemory.h"
#include "SimulatedStudies.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

struct HostData
{
    KXVarList variables;
    MAModelSettings settings;
    VectorRecordIter records;
};

/// BCG vaccination against tuberculosis: Colditz et al. (1994), JAMA 271, 698-702.
HostData BcgTables()
{
    const std::vector<std::vector<double>> tables = {
        {4, 119, 11, 128},     {6, 300, 29, 274},      {3, 228, 11, 209},        {62, 13536, 248, 12619},
        {33, 5036, 47, 5761},  {180, 1361, 372, 1079}, {8, 2537, 10, 619},       {505, 87886, 499, 87892},
        {29, 7470, 45, 7232},  {17, 1699, 65, 1600},   {186, 50448, 141, 27197}, {5, 2493, 3, 2338},
        {27, 16886, 29, 17825}};
    HostData data{{}, {}, VectorRecordIter(tables)};
    data.settings.SetTreatmentSuccessIndex(data.variables.AddContVar("treatment_events", ""));
    data.settings.SetTreatmentFailureIndex(data.variables.AddContVar("treatment_nonevents", ""));
    data.settings.SetControlSuccessIndex(data.variables.AddContVar("control_events", ""));
    data.settings.SetControlFailureIndex(data.variables.AddContVar("control_nonevents", ""));
    return data;
}

HostData ReadyMadeStudies(std::size_t count)
{
    const SimulatedStudies studies = SimulateStudies(count);
    std::vector<Record> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        records.emplace_back(std::vector<double>{studies.effectSizes[i], studies.variances[i]});

    HostData data{{}, {}, VectorRecordIter(std::move(records))};
    data.settings.SetOutcomesType(MAConst::OUTCOME_CONTINUOUS);
    data.settings.SetInputESType(MAConst::INPUT_READY_MADE);
    data.settings.SetInputEffectSizeIndex(data.variables.AddContVar("effect", ""));
    data.settings.SetInputVarianceIndex(data.variables.AddContVar("variance", ""));
    return data;
}

/// Constructs the analysis object, runs it and destroys it.
template <class Analysis>
bool RunSucceeds(HostData& data)
{
    Analysis analysis(data.settings);
    return !analysis.RUN(data.records, data.variables).IsError();
}

template <class Analysis>
void TimeRuns(benchmark::State& state, HostData& data)
{
    while (state.KeepRunning()) {
        if (!RunSucceeds<Analysis>(data)) {
            state.SkipWithError("the analysis failed");
            break;
        }
    }
}

void RunBcg(benchmark::State& state)
{
    HostData data = BcgTables();
    TimeRuns<MABinModel>(state, data);
}
BENCHMARK(RunBcg)->Unit(benchmark::kMicrosecond);

/// bytes_per_study: what a run holds at most, without the host's records.
void RunReadyMade(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    HostData data = ReadyMadeStudies(count);
    TimeRuns<MAContModel>(state, data);
    state.SetComplexityN(state.range(0));

    const PeakMemory peakMemory;
    if (RunSucceeds<MAContModel>(data))
        state.counters["bytes_per_study"] =
            static_cast<double>(peakMemory.Bytes()) / static_cast<double>(count);
}
BENCHMARK(RunReadyMade)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace
