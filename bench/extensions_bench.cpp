// The analyses after the overall model, conversions and further outcomes, as whole runs.

#include "SimulatedStudies.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <benchmark/benchmark.h>

#include <cmath>
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

/// `count` records, of which `valuesOf(i)` gives the values.
template <class ValuesOf>
VectorRecordIter RecordsOf(std::size_t count, ValuesOf valuesOf)
{
    std::vector<Record> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        records.emplace_back(valuesOf(i));
    return VectorRecordIter(std::move(records));
}

/// Studies in subgroups of 100, in a mixed order.
VectorRecordIter GroupedStudies(std::size_t count)
{
    const SimulatedStudies studies = SimulateStudies(count);
    return RecordsOf(count, [&](std::size_t i) {
        return std::vector<double>{studies.effectSizes[i], studies.variances[i],
                                   static_cast<double>(i % (count / 100 + 1)),
                                   static_cast<double>(i * 7919 % count)};
    });
}

template <class Analysis = MAContModel>
void TimeRuns(benchmark::State& state, const MAModelSettings& settings, VectorRecordIter records)
{
    while (state.KeepRunning()) {
        Analysis analysis(settings);
        if (analysis.RUN(records, KXVarList()).IsError()) {
            state.SkipWithError("the analysis failed");
            break;
        }
    }
}

void TimeRuns(benchmark::State& state, const MAModelSettings& settings)
{
    TimeRuns(state, settings, GroupedStudies(static_cast<std::size_t>(state.range(0))));
}

void Subgroups(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetSubGroupIndex(GROUP);
    TimeRuns(state, settings);
}
BENCHMARK(Subgroups)->Arg(100000)->Unit(benchmark::kMillisecond);

void SubgroupsWithCommonTau2(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetSubGroupIndex(GROUP);
    settings.SetCommonTau2(true);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    TimeRuns(state, settings);
}
BENCHMARK(SubgroupsWithCommonTau2)->Arg(100000)->Unit(benchmark::kMillisecond);

void RankTest(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_FIXED);
    settings.SetRankTest(true);
    TimeRuns(state, settings);
}
BENCHMARK(RankTest)->Arg(100000)->Unit(benchmark::kMillisecond);

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
BENCHMARK(CumulativeReml)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// Odds ratios with their limits, of which a tenth is skewed enough for a look at the printed digits.
void ConvertedIntervals(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const SimulatedStudies studies = SimulateStudies(count);
    VectorRecordIter records = RecordsOf(count, [&](std::size_t i) {
        const double half = 1.96 * std::sqrt(studies.variances[i]);
        const double shift = i % 10 == 0 ? 0.2 * half : 0.0;
        return std::vector<double>{std::exp(studies.effectSizes[i] + shift),
                                   std::exp(studies.effectSizes[i] - half),
                                   std::exp(studies.effectSizes[i] + half)};
    });
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_FIXED);
    settings.SetInputVarianceIndex(-1);
    settings.SetInputCILowerIndex(1);
    settings.SetInputCIUpperIndex(2);
    settings.SetInputIsRatio(true);
    TimeRuns(state, settings, std::move(records));
}
BENCHMARK(ConvertedIntervals)->Arg(100000)->Unit(benchmark::kMillisecond);

/// Groups of 20 to 119 with the five numbers of normal data.
void ConvertedMedians(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const SimulatedStudies studies = SimulateStudies(count);
    VectorRecordIter records = RecordsOf(count, [&](std::size_t i) {
        const double centre = studies.effectSizes[i];
        return std::vector<double>{20.0 + static_cast<double>(i % 100),
                                   centre,
                                   centre - 0.7,
                                   centre + 0.6,
                                   centre - 2.4,
                                   centre + 2.2};
    });
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_CONTINUOUS);
    settings.SetModelType(MAConst::MODEL_FIXED);
    settings.SetTreatmentNIndex(0);
    settings.SetTreatmentMedianIndex(1);
    settings.SetTreatmentQ1Index(2);
    settings.SetTreatmentQ3Index(3);
    settings.SetTreatmentMinIndex(4);
    settings.SetTreatmentMaxIndex(5);
    settings.SetControlNIndex(0);
    settings.SetControlMedianIndex(1);
    settings.SetControlMinIndex(4);
    settings.SetControlMaxIndex(5);
    TimeRuns(state, settings, std::move(records));
}
BENCHMARK(ConvertedMedians)->Arg(100000)->Unit(benchmark::kMillisecond);

/// Deletion diagnostics of all studies, with the proved tau² without each.
void InfluenceReml(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetInfluence(true);
    TimeRuns(state, settings);
}
BENCHMARK(InfluenceReml)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

void TimeLeaveOneOut(benchmark::State& state, MAConst::MODELTYPE model, MAConst::TAU2ESTIMATOR estimator)
{
    MAModelSettings settings = ReadyMadeSettings(model);
    settings.SetEstTauType(estimator);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetLeaveOneOut(true);
    TimeRuns(state, settings);
}

void LeaveOneOutReml(benchmark::State& state)
{
    TimeLeaveOneOut(state, MAConst::MODEL_RANDOM, MAConst::TAU2_REML);
}
BENCHMARK(LeaveOneOutReml)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

void LeaveOneOutFixed(benchmark::State& state)
{
    TimeLeaveOneOut(state, MAConst::MODEL_FIXED, MAConst::TAU2_REML);
}
BENCHMARK(LeaveOneOutFixed)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

void LeaveOneOutHedges(benchmark::State& state)
{
    TimeLeaveOneOut(state, MAConst::MODEL_RANDOM, MAConst::TAU2_HE);
}
BENCHMARK(LeaveOneOutHedges)->Arg(10000)->Unit(benchmark::kMillisecond);

void LeaveOneOutSidikJonkman(benchmark::State& state)
{
    TimeLeaveOneOut(state, MAConst::MODEL_RANDOM, MAConst::TAU2_SJ);
}
BENCHMARK(LeaveOneOutSidikJonkman)->Arg(10000)->Unit(benchmark::kMillisecond);

/// 2x2 tables, some with zero cells, pooled by Mantel and Haenszel.
void LeaveOneOutTables(benchmark::State& state)
{
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_BINARY);
    settings.SetModelType(MAConst::MODEL_FIXED);
    settings.SetWeightType(MAConst::WEIGHT_BINARY_FIXED);
    settings.SetTreatmentSuccessIndex(0);
    settings.SetTreatmentFailureIndex(1);
    settings.SetControlSuccessIndex(2);
    settings.SetControlFailureIndex(3);
    settings.SetLeaveOneOut(true);
    TimeRuns<MABinModel>(state, settings,
                         RecordsOf(static_cast<std::size_t>(state.range(0)), [](std::size_t i) {
                             const auto of = [i](std::size_t most) { return static_cast<double>(i % most); };
                             return std::vector<double>{of(20), 20.0 + of(101), of(23), 20.0 + of(97)};
                         }));
}
BENCHMARK(LeaveOneOutTables)->Arg(10000)->Unit(benchmark::kMillisecond);

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
    VectorRecordIter records = RecordsOf(static_cast<std::size_t>(state.range(0)), [](std::size_t i) {
        return std::vector<double>{static_cast<double>(i % 20), static_cast<double>(20 + i * 7919 % 500)};
    });
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
