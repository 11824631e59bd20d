// The random-effects model by estimator of the between-study variance, and a yardstick for it: a plain loop
// over two arrays that does what restricted maximum likelihood needs and nothing else.

#include "SimulatedStudies.h"

#include "meta_analysis/pooling/MARandomEffectModel.h"
#include "meta_analysis/settings/MAConst.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

constexpr double convergenceTolerance = 1e-6;
constexpr int maxIterations = 100;

struct Fit
{
    double tau2;
    double mean;
    double q;
};

Fit LibraryFit(const SimulatedStudies& studies, MAConst::TAU2ESTIMATOR estimator)
{
    MARandomEffectModel model;
    model.SetEffectSizes(&studies.effectSizes);
    model.SetVariances(&studies.variances);
    model.SetKHAdjType(MAConst::KNAPP_HARTUNG_NONE);
    model.SetSignLevel(0.05);
    model.SetMaxIter(maxIterations);
    model.SetMaxStepHalving(5);
    model.SetConverTol(convergenceTolerance);
    model.SetEstimationType(estimator);
    model.EstimateMeanESStats();
    return {model.GetBetweenStudyVariance(), model.GetEstEffectSize(), model.GetHomogeneityTestQ()};
}

/// The yardstick, for effects y and variances v of n studies.
namespace bare {

struct WeightedMean
{
    double mean;
    double weightSum;
};

/// With weights 1 / (tau2 + v).
WeightedMean Pool(const double* y, const double* v, std::size_t n, double tau2)
{
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double weight = 1.0 / (tau2 + v[i]);
        weightSum += weight;
        weightedSum += weight * y[i];
    }
    return {weightedSum / weightSum, weightSum};
}

/// Starting value: the sample variance of the effects less the mean of their variances.
double HedgesTau2(const double* y, const double* v, std::size_t n)
{
    const auto count = static_cast<double>(n);
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        sum += y[i];
    const double mean = sum / count;

    double residualSum = 0.0;
    double varianceSum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        residualSum += (y[i] - mean) * (y[i] - mean);
        varianceSum += v[i];
    }
    return std::max(0.0, residualSum / (count - 1.0) - varianceSum / count);
}

/// Scoring step: Viechtbauer (2005), Journal of Educational and Behavioral Statistics 30, 261-293.
double RemlStep(const double* y, const double* v, std::size_t n, double tau2)
{
    const WeightedMean pooled = Pool(y, v, n, tau2);
    double traceP = 0.0;
    double tracePP = 0.0;
    double squaredWeightSum = 0.0;
    double residualSum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double weight = 1.0 / (tau2 + v[i]);
        const double leverage = weight / pooled.weightSum;
        const double weightedResidual = weight * (y[i] - pooled.mean);
        traceP += (1.0 - leverage) * weight;
        tracePP += (1.0 - 2.0 * leverage) * weight * weight;
        squaredWeightSum += weight * weight;
        residualSum += weightedResidual * weightedResidual;
    }
    const double ratio = squaredWeightSum / pooled.weightSum;
    return (residualSum - traceP) / (tracePP + ratio * ratio);
}

double HomogeneityQ(const double* y, const double* v, std::size_t n)
{
    const double mean = Pool(y, v, n, 0.0).mean;
    double q = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        q += (y[i] - mean) * (y[i] - mean) / v[i];
    return q;
}

Fit RemlFit(const SimulatedStudies& studies)
{
    const double* const y = studies.effectSizes.data();
    const double* const v = studies.variances.data();
    const std::size_t n = studies.effectSizes.size();
    double tau2 = HedgesTau2(y, v, n);
    for (int iteration = 0; iteration < maxIterations; ++iteration) {
        const double step = RemlStep(y, v, n, tau2);
        if (std::abs(step) < convergenceTolerance)
            break;
        tau2 += step;
    }
    return {tau2, Pool(y, v, n, tau2).mean, HomogeneityQ(y, v, n)};
}

} // namespace bare

/// Both sides sum the same terms; what differs is rounding, far below this.
bool Agree(double left, double right)
{
    return std::abs(left - right) <= 1e-9 * std::abs(right);
}

bool Agree(const Fit& left, const Fit& right)
{
    return Agree(left.tau2, right.tau2) && Agree(left.mean, right.mean) && Agree(left.q, right.q);
}

void StudyCounts(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(10)->Range(10, 1000000)->Unit(benchmark::kMicrosecond);
}

void RandomEffects(benchmark::State& state, MAConst::TAU2ESTIMATOR estimator)
{
    const SimulatedStudies studies = SimulateStudies(static_cast<std::size_t>(state.range(0)));
    while (state.KeepRunning())
        benchmark::DoNotOptimize(LibraryFit(studies, estimator));
    state.SetComplexityN(state.range(0));
}
BENCHMARK_CAPTURE(RandomEffects, HE, MAConst::TAU2_HE)->Apply(StudyCounts)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(RandomEffects, HS, MAConst::TAU2_HS)->Apply(StudyCounts)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(RandomEffects, DL, MAConst::TAU2_DL)->Apply(StudyCounts)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(RandomEffects, SJ, MAConst::TAU2_SJ)->Apply(StudyCounts)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(RandomEffects, ML, MAConst::TAU2_ML)->Apply(StudyCounts)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(RandomEffects, REML, MAConst::TAU2_REML)->Apply(StudyCounts)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(RandomEffects, EB, MAConst::TAU2_EB)->Apply(StudyCounts)->Complexity(benchmark::oN);

/// Mean seconds of one call.
template <class Work>
double TimeOne(int calls, Work work)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    for (int call = 0; call < calls; ++call)
        benchmark::DoNotOptimize(work());
    return std::chrono::duration<double>(Clock::now() - start).count() / calls;
}

/// Library and yardstick in turn, so that both meet the same state of the machine. Reported are the fastest
/// of each, in microseconds, and their ratio; the time column is both together.
void RemlAgainstBareLoop(benchmark::State& state)
{
    const SimulatedStudies studies = SimulateStudies(static_cast<std::size_t>(state.range(0)));
    if (!Agree(LibraryFit(studies, MAConst::TAU2_REML), bare::RemlFit(studies))) {
        state.SkipWithError("library and yardstick disagree");
        return;
    }

    // Enough calls for the clock, whose resolution is some ten nanoseconds.
    const int calls = static_cast<int>(std::max<std::int64_t>(1, 10000 / state.range(0)));
    double library = std::numeric_limits<double>::infinity();
    double yardstick = std::numeric_limits<double>::infinity();
    while (state.KeepRunning()) {
        library = std::min(library, TimeOne(calls, [&] { return LibraryFit(studies, MAConst::TAU2_REML); }));
        yardstick = std::min(yardstick, TimeOne(calls, [&] { return bare::RemlFit(studies); }));
    }
    state.counters["library_us"] = library * 1e6;
    state.counters["bare_us"] = yardstick * 1e6;
    state.counters["ratio"] = library / yardstick;
}
BENCHMARK(RemlAgainstBareLoop)->Apply(StudyCounts);

} // namespace
