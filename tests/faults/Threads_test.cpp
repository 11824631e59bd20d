// Separate objects in separate threads that share their settings. Built once more under the thread sanitizer.

#include "faults/FullRecords.h"
#include "faults/Results.h"
#include "support/BulkColumns.h"
#include "support/Regression.h"

#include "meta_analysis/bulk/MABulkPooling.h"

#include <functional>
#include <thread>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// What all threads read.
struct Shared
{
    Shared()
    {
        random.SetSubGroupIndex(GROUP);
        random.SetIsTRIMFILL(true);
        random.SetFunnelConTourTesType(CONTOUR_TWO_SIDED);
        fixed.SetModelType(MODEL_FIXED);
        fixed.SetWeightType(WEIGHT_BINARY_FIXED);
        fixed.SetContrastCoefIndex({CONTRAST});
        ofEffects.SetKnapHartAdjustType(KNAPP_HARTUNG_ADJUSTED);
        regression.SetEstTauType("REML");
    }

    MAModelSettings random = TableSettings();
    MAModelSettings fixed = TableSettings();
    MAModelSettings ofEffects = EffectSettings(CONTRAST);
    MARegSettings regression = RegressionOn({2});
    Rows rows = RandomStudies(7, 40, 1);
    KXVarList variables = VariablesOf(fullRecords);
};

template <class Driver>
Results Analysed(const Shared& shared, const MAModelSettings& settings)
{
    VectorRecordIter records(fullRecords);
    Driver model(settings);
    EXPECT_TRUE(model.RUN(records, shared.variables).IsOK());
    EXPECT_TRUE(model.BubblePlot(records, shared.variables, shared.regression).IsOK());
    return ResultsOf(model);
}

/// Many sets over the shared studies, by threads of its own.
Results PooledMany(const Shared& shared)
{
    constexpr std::size_t setCount = 3000;
    const std::size_t most = shared.rows.size();
    std::vector<double> effects, variances;
    std::vector<std::size_t> offsets = {0};
    for (std::size_t set = 0; set < setCount; ++set) {
        for (std::size_t i = 0; i < set % most; ++i) {
            effects.push_back(shared.rows[i][0]);
            variances.push_back(shared.rows[i][1]);
        }
        offsets.push_back(effects.size());
    }
    MARandomEffectsChoice choice;
    choice.search = TAU2_SEARCH_GLOBAL;
    choice.tau2Interval = TAU2_INTERVAL_Q_PROFILE;
    BulkColumns columns(setCount);
    const MARaggedSets sets{effects.data(), variances.data(), offsets.data(), setCount};
    EXPECT_TRUE(PoolSets(sets, choice, columns.results, 3).IsOK());
    return {{"columns", {columns.values.begin(), columns.values.end()}}};
}

const std::function<Results(const Shared&)> tasks[] = {
    PooledMany,
    [](const Shared& shared) { return Analysed<MABinModel>(shared, shared.random); },
    [](const Shared& shared) { return Analysed<MABinModel>(shared, shared.fixed); },
    [](const Shared& shared) { return Analysed<MAContModel>(shared, shared.ofEffects); },
    [](const Shared& shared) { return ResultsOf(*FERegression(shared.regression, shared.rows).output); },
    [](const Shared& shared) { return ResultsOf(*RERegression(shared.regression, shared.rows).output); },
};

} // namespace

TEST(Threads, DoNotDisturbOneAnother)
{
    constexpr int threadCount = 6;
    constexpr int rounds = 10;
    const Shared shared;
    const auto work = [&](std::vector<Results>& done) {
        for (int round = 0; round < rounds; ++round) {
            for (const auto& task : tasks)
                done.push_back(task(shared));
        }
    };
    std::vector<std::vector<Results>> done(threadCount);
    std::vector<std::thread> threads;
    for (std::vector<Results>& ofThread : done)
        threads.emplace_back(work, std::ref(ofThread));
    for (std::thread& thread : threads)
        thread.join();

    std::vector<Results> expected;
    work(expected);
    for (const std::vector<Results>& ofThread : done) {
        ASSERT_EQ(ofThread.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(FirstDifference(ofThread[i], expected[i]), "")
                << "differs in task " << i % std::size(tasks);
    }
}
