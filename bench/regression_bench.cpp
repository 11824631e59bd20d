// Meta-regression: an intercept and two covariates, by restricted maximum likelihood, beside a bare loop of
// the same sums.

#include "SimulatedStudies.h"

#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

constexpr std::size_t columnCount = 3;

/// Effect size, variance and two covariates of each study.
std::vector<std::vector<double>> SimulateRows(std::size_t count)
{
    const SimulatedStudies studies = SimulateStudies(count);
    std::vector<std::vector<double>> rows;
    rows.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto position = static_cast<double>(i);
        rows.push_back(
            {studies.effectSizes[i], studies.variances[i], std::sin(position), std::cos(1.7 * position)});
    }
    return rows;
}

MARegSettings TwoCovariates()
{
    MARegSettings settings;
    settings.SetDependent(0);
    settings.SetOMWVarIndex(1);
    settings.SetInterceptUse(true);
    settings.SetEstTauType("REML");
    for (const int covariate : {2, 3}) {
        KXModelEffect effect;
        effect.AddCovariate(covariate);
        settings.AddCovariate(covariate);
        settings.AddModelEffect(effect);
    }
    return settings;
}

void BuildRemlRegression(benchmark::State& state)
{
    const MARegSettings settings = TwoCovariates();
    VectorRecordIter records(SimulateRows(static_cast<std::size_t>(state.range(0))));
    while (state.KeepRunning()) {
        MAREAlgorithm engine(settings);
        if (engine.BuildModel(records).IsError()) {
            state.SkipWithError("the regression failed");
            break;
        }
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BuildRemlRegression)->Arg(13)->RangeMultiplier(10)->Range(100, 100000)->Complexity(benchmark::oN);

using Row = std::array<double, columnCount + 1>; // predictors, then the dependent
using Square = std::array<std::array<double, columnCount>, columnCount>;

/// The two passes over the rows that one REML iteration needs, at a fixed tau² and M: cross products with
/// weights and squared weights, then residual, leverage and the sums of the step.
double BareRemlIteration(const std::vector<Row>& rows, const std::vector<double>& variances, double tau2,
                         const Square& inverse)
{
    std::array<std::array<double, columnCount + 1>, columnCount + 1> products{};
    std::array<std::array<double, columnCount + 1>, columnCount + 1> squared{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double weight = 1.0 / (variances[i] + tau2);
        for (std::size_t r = 0; r <= columnCount; ++r) {
            for (std::size_t c = 0; c <= r; ++c) {
                products[r][c] += weight * rows[i][r] * rows[i][c];
                squared[r][c] += weight * weight * rows[i][r] * rows[i][c];
            }
        }
    }
    double traceP = 0.0;
    double tracePP = 0.0;
    double residualSum = 0.0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double weight = 1.0 / (variances[i] + tau2);
        double residual = rows[i][columnCount];
        double form = 0.0;
        for (std::size_t r = 0; r < columnCount; ++r) {
            residual -= rows[i][r] * inverse[r][r];
            for (std::size_t c = 0; c < columnCount; ++c)
                form += rows[i][r] * inverse[r][c] * rows[i][c];
        }
        const double leverage = weight * form;
        traceP += (1.0 - leverage) * weight;
        tracePP += (1.0 - 2.0 * leverage) * weight * weight;
        residualSum += weight * weight * residual * residual;
    }
    return products[0][0] + squared[0][0] + traceP + tracePP + residualSum;
}

/// One iteration; a whole estimate has some five to ten of them, and half a dozen fits more.
void BareLoopOfOneIteration(benchmark::State& state)
{
    const auto data = SimulateRows(static_cast<std::size_t>(state.range(0)));
    std::vector<Row> rows;
    std::vector<double> variances;
    for (const std::vector<double>& study : data) {
        rows.push_back({1.0, study[2], study[3], study[0]});
        variances.push_back(study[1]);
    }
    const Square inverse = {{{0.1, 0.0, 0.0}, {0.0, 0.2, 0.0}, {0.0, 0.0, 0.2}}};
    while (state.KeepRunning())
        benchmark::DoNotOptimize(BareRemlIteration(rows, variances, 0.1, inverse));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BareLoopOfOneIteration)->RangeMultiplier(10)->Range(100, 100000)->Complexity(benchmark::oN);

} // namespace
