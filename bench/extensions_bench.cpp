// The analyses after the overall model, as whole runs on ready-made effect sizes.

#include "SimulatedStudies.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
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

/// Deletion diagnostics of all studies, with the proved tau² without each.
void InfluenceReml(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetInfluence(true);
    TimeRuns(state, settings);
}
BENCHMARK(InfluenceReml)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

void LeaveOneOutReml(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetLeaveOneOut(true);
    TimeRuns(state, settings);
}
BENCHMARK(LeaveOneOutReml)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

/// On an intercept and two covariates.
void RegressionInfluenceReml(benchmark::State& state)
{
    VectorRecordIter records = GroupedStudies(static_cast<std::size_t>(state.range(0)));
    MARegSettings settings;
    settings.SetDependent(EFFECT);
    settings.SetOMWVarIndex(VARIANCE);
    settings.SetInterceptUse(true);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetInfluence(true);
    for (const int covariate : {GROUP, ORDER}) {
        settings.AddCovariate(covariate);
        KXModelEffect effect;
        effect.AddCovariate(covariate);
        settings.AddModelEffect(effect);
    }
    while (state.KeepRunning()) {
        MAREAlgorithm engine(settings);
        if (engine.BuildModel(records).IsError()) {
            state.SkipWithError("the regression failed");
            break;
        }
    }
}
BENCHMARK(RegressionInfluenceReml)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
