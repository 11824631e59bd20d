// The analyses after the overall model, as whole runs on ready-made effect sizes, and those of
// meta-regressions.

#include "SimulatedStudies.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/RegressionSettingsOf.h"

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

void TimeRuns(benchmark::State& state, const MAModelSettings& settings, VectorRecordIter records)
{
    while (state.KeepRunning()) {
        MAContModel analysis(settings);
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
BENCHMARK(CumulativeReml)->Arg(1000)->Unit(benchmark::kMillisecond);

/// Odds ratios with their limits, of which a tenth is skewed enough for a look at the printed digits.
void ConvertedIntervals(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const SimulatedStudies studies = SimulateStudies(count);
    std::vector<Record> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double half = 1.96 * std::sqrt(studies.variances[i]);
        const double shift = i % 10 == 0 ? 0.2 * half : 0.0;
        records.emplace_back(std::vector<double>{std::exp(studies.effectSizes[i] + shift),
                                                 std::exp(studies.effectSizes[i] - half),
                                                 std::exp(studies.effectSizes[i] + half)});
    }
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_FIXED);
    settings.SetInputVarianceIndex(-1);
    settings.SetInputCILowerIndex(1);
    settings.SetInputCIUpperIndex(2);
    settings.SetInputIsRatio(true);
    TimeRuns(state, settings, VectorRecordIter(std::move(records)));
}
BENCHMARK(ConvertedIntervals)->Arg(100000)->Unit(benchmark::kMillisecond);

/// Groups of 20 to 119 with the five numbers of normal data.
void ConvertedMedians(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const SimulatedStudies studies = SimulateStudies(count);
    std::vector<Record> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double centre = studies.effectSizes[i];
        records.emplace_back(std::vector<double>{20.0 + static_cast<double>(i % 100), centre, centre - 0.7,
                                                 centre + 0.6, centre - 2.4, centre + 2.2});
    }
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
    TimeRuns(state, settings, VectorRecordIter(std::move(records)));
}
BENCHMARK(ConvertedMedians)->Arg(100000)->Unit(benchmark::kMillisecond);

/// A fixed-effect regression on nine covariates and a factor of five levels, with all that is asked of it
/// beside the coefficients when the argument is 1.
void RegressionQuestions(benchmark::State& state)
{
    constexpr int covariateCount = 9;
    constexpr std::size_t studyCount = 10000;
    const SimulatedStudies studies = SimulateStudies(studyCount);
    std::vector<Record> rows;
    for (std::size_t i = 0; i < studyCount; ++i) {
        std::vector<double> row = {studies.effectSizes[i], studies.variances[i], static_cast<double>(i % 5)};
        for (int j = 1; j <= covariateCount; ++j)
            row.push_back(std::sin(static_cast<double>(i) * j));
        rows.emplace_back(std::move(row));
    }
}

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
    settings.AddFactor(2, 5);
    KXModelEffect factor;
    factor.AddFactor(2);
    settings.AddModelEffect(factor);
    for (int j = 0; j < covariateCount; ++j)
        AddCovariateEffect(settings, 3 + j);
    if (state.range(0) == 1) {
        std::vector<std::vector<double>> weights(10, std::vector<double>(15));
        for (std::size_t i = 0; i < weights.size(); ++i)
            weights[i][i < 5 ? i : i + 1] = 1.0;
        settings.SetHypotheses(std::move(weights));
        settings.SetReferenceLevel(2, 0);
        settings.SetPredictions(std::vector<Record>(rows.begin(), rows.begin() + 100));
    }
    VectorRecordIter records(std::move(rows));
    while (state.KeepRunning()) {
        MAFEAlgorithm engine(settings);
        if (engine.BuildModel(records).IsError()) {
            state.SkipWithError("the regression failed");
            break;
        }
    }
}
BENCHMARK(RegressionQuestions)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

enum RegressionColumn : int
{
    COVARIATE = 2,
    CLUSTER
};

/// A regression by REML on a covariate, of studies in `clusterCount` clusters.
void TimeRegressions(benchmark::State& state, MARegSettings settings, std::size_t clusterCount)
{
    const SimulatedStudies studies = SimulateStudies(static_cast<std::size_t>(state.range(0)));
    std::vector<Record> rows;
    for (std::size_t i = 0; i < studies.effectSizes.size(); ++i)
        rows.emplace_back(std::vector<double>{studies.effectSizes[i], studies.variances[i],
                                              static_cast<double>(i * 7919 % 101),
                                              static_cast<double>(i % clusterCount)});
    settings.SetDependent(EFFECT);
    settings.SetOMWVarIndex(VARIANCE);
    settings.SetInterceptUse(true);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.AddCovariate(COVARIATE);
    KXModelEffect effect;
    effect.AddCovariate(COVARIATE);
    settings.AddModelEffect(effect);
    VectorRecordIter records(rows);
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

void RegressionBubblePlot(benchmark::State& state)
{
    const SimulatedStudies studies = SimulateStudies(static_cast<std::size_t>(state.range(0)));
    std::vector<Record> rows;
    for (std::size_t i = 0; i < studies.effectSizes.size(); ++i)
        rows.emplace_back(std::vector<double>{studies.effectSizes[i], studies.variances[i],
                                              std::sin(static_cast<double>(i))});
    VectorRecordIter records(std::move(rows));
    MARegSettings settings;
    settings.SetDependent(EFFECT);
    settings.SetOMWVarIndex(VARIANCE);
    settings.SetInterceptUse(true);
    AddCovariateEffect(settings, 2);
    MAFEAlgorithm engine(settings);
    engine.BuildModel(records);
    MARegBubblePlot plot;
    while (state.KeepRunning())
        if (engine.BubblePlot(records, 2, 100, plot).IsError())
            state.SkipWithError("the plot failed");
}
BENCHMARK(RegressionBubblePlot)->Arg(10000)->Unit(benchmark::kMillisecond);

void ClusterRobust(benchmark::State& state)
{
    MARegSettings settings;
    settings.SetCluster(CLUSTER);
    TimeRegressions(state, settings, static_cast<std::size_t>(state.range(1)));
}
BENCHMARK(ClusterRobust)
    ->Args({10000, 2})
    ->Args({10000, 500})
    ->Args({10000, 10000})
    ->Unit(benchmark::kMillisecond);

void Permutations(benchmark::State& state)
{
    MARegSettings settings;
    settings.SetPermutations(static_cast<int>(state.range(1)));
    TimeRegressions(state, settings, 1);
}
BENCHMARK(Permutations)
    ->Args({13, 1000})
    ->Args({13, 10000})
    ->Args({1000, 1000})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(RegressionInfluenceReml)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);
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
