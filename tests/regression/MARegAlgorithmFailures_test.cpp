// What can go wrong with a meta-regression: its settings, its records, the host's iterator and listeners.

#include "support/FaultyRecordIter.h"
#include "support/Regression.h"

#include "meta_analysis/platform/common/KXQueryCancel.h"
#include "meta_analysis/platform/common/ProgressListener.h"

#include <functional>
#include <stdexcept>

using namespace MA_NAMESPACE;

namespace {

const char* const codes[] = {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"};

template <class Engine>
void ExpectFailed(const Regression<Engine>& regression, int code)
{
    EXPECT_EQ(regression.status, KXStatus(code));
    EXPECT_EQ(regression.engine.GetStatus(), regression.status);
    EXPECT_FALSE(regression.engine.IsModelBuilt());
    EXPECT_EQ(regression.output->GetNGoodRecords(), 0);
    EXPECT_TRUE(Same(Scores(regression.engine, Row{0.1, 0.1, 1.0}).fit, missing));
}

/// Both engines.
void ExpectFailed(const MARegSettings& settings, const Rows& rows, int code)
{
    ExpectFailed(FERegression(settings, rows), code);
    ExpectFailed(RERegression(settings, rows), code);
}

} // namespace

TEST(MARegAlgorithmFailures, Settings)
{
    using Spoil = std::function<void(MARegSettings&)>;
    const std::pair<const char*, Spoil> cases[] = {
        {"no step-halving", [](auto& settings) { settings.SetMaxStepHalvingValue(0); }},
        {"no tolerance", [](auto& settings) { settings.SetParameterTolerance(0.0); }},
        {"covariate outside", [](auto& settings) { settings.AddModelEffect(EffectOf({}, {9})); }},
        {"factor outside", [](auto& settings) { settings.AddModelEffect(EffectOf({9}, {2})); }},
        {"covariate as a factor", [](auto& settings) { settings.AddModelEffect(EffectOf({2}, {})); }},
        {"the dependent", [](auto& settings) { settings.AddModelEffect(EffectOf({}, {0})); }},
        {"no variable", [](auto& settings) { settings.AddModelEffect(KXModelEffect()); }},
    };
    for (const auto& [name, spoil] : cases) {
        SCOPED_TRACE(name);
        MARegSettings settings = RegressionOn({2});
        spoil(settings);
        ExpectFailed(settings, RandomStudies(1, 5, 1), 460009);
        MAFEAlgorithm engine(settings);
        VectorRecordIter records(RandomStudies(1, 5, 1));
        EXPECT_EQ(engine.CreateParameters(records), KXStatus(460009));
        EXPECT_FALSE(engine.AreParamsCreated());
    }
}

TEST(MARegAlgorithmFailures, UnknownEstimatorIsNone)
{
    const Rows rows = RandomStudies(101, 12, 1);
    MARegSettings settings = RegressionOn({2});
    const double slope = FERegression(settings, rows).output->GetEstimation()[1];
    for (const char* const code : {"", "reml", "REM", "HE "}) {
        settings.SetEstTauType(code);
        const RERegression random(settings, rows);
        const MARegOutputStats& output = *random.output;
        EXPECT_EQ(random.engine.GetEstTauType(), 7) << code;
        EXPECT_EQ((Row{output.GetTau(), output.GetRSquare(), output.GetIresSquare(), output.GetHresSquare()}),
                  (Row{0.0, 0.0, 0.0, 1.0}));
        EXPECT_TRUE(Close(output.GetEstimation()[1], slope, 1e-13, 1.0));
    }
}

TEST(MARegAlgorithmFailures, TooFewUsableRecords)
{
    const Row good = {0.3, 0.2, 1.5};
    const Row bad = {0.3, 0.0, 1.5};
    struct Case
    {
        const char* name;
        Rows rows;
        int fixed;
        int random[7]; ///< by estimator
    };
    const Case cases[] = {
        {"none at all", {}, 0, {460015, 0, 0, 0, 460015, 460015, 460015}},
        {"none usable", {bad, bad}, 460073, {460073, 460073, 460073, 460073, 460073, 460073, 460073}},
        {"one usable", {bad, good, bad}, 0, {460015, 0, 0, 460029, 460015, 460015, 460015}},
        {"one", {good}, 0, {460015, 0, 0, 460029, 460015, 460015, 460015}},
        {"as many as parameters", RandomStudies(1, 2, 1), 0, {460015, 0, 0, 460015, 460015, 460015, 460015}},
    };
    for (const Case& c : cases) {
        MARegSettings settings = RegressionOn({2});
        settings.SetMultiDiser(true);
        EXPECT_EQ(FERegression(settings, c.rows).status, KXStatus(c.fixed)) << c.name;
        for (std::size_t i = 0; i < std::size(codes); ++i) {
            SCOPED_TRACE(c.name + std::string(" ") + codes[i]);
            settings.SetEstTauType(codes[i]);
            const RERegression random(settings, c.rows);
            if (c.random[i] != 0)
                ExpectFailed(random, c.random[i]);
            else
                EXPECT_TRUE(random.status.IsOK() && random.engine.IsModelBuilt());
        }
    }
}

namespace {

/// A rewind is a pass like any other.
struct FaultyRewindIter : FaultyRecordIter
{
    using FaultyRecordIter::FaultyRecordIter;
    bool Reset() override { return Start(); }
};

} // namespace

/// The passes are the positioning of the iterator, the first pass, and the pass that builds rows.
TEST(MARegAlgorithmFailures, Iterator)
{
    using F = FaultyRecordIter;
    const std::pair<F::Fault, std::vector<int>> cases[] = {
        {F::NO_FAULT, {0, 0, 0}},
        {F::REFUSES_START, {460011, 460011, 460012}},
        {F::THROWS_IN_START, {460012, 460012, 460012}},
        {F::BREAKS_OFF, {0, 460012, 460012}},
        {F::REPORTS_ERROR, {460012, 460012, 460012}},
        {F::THROWS_IN_NEXT, {0, 460012, 460012}},
        {F::THROWS_A_NUMBER, {0, 460012, 460012}},
        {F::THROWS_IN_GET_ERROR, {460012, 460012, 460012}},
        {F::RUNS_OUT_OF_MEMORY, {0, 460099, 460099}},
    };
    const MARegSettings settings = RegressionOn({2});
    for (const auto& [fault, expected] : cases) {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            SCOPED_TRACE(testing::Message() << "fault " << fault << " in pass " << i + 1);
            FaultyRewindIter records(RandomStudies(111, 6, 1), fault, static_cast<int>(i) + 1);
            MAREAlgorithm engine(settings);
            EXPECT_EQ(engine.BuildModel(records), KXStatus(expected[i]));
            EXPECT_EQ(engine.GetStatus(), KXStatus(expected[i]));
            EXPECT_EQ(engine.IsModelBuilt(), expected[i] == 0);
        }
    }
}

namespace {

/// Cancels, or throws, when asked for the n-th time.
struct CancelAt : KXQueryCancel
{
    explicit CancelAt(int turn, bool isThrowing = false) : turn_(turn), isThrowing_(isThrowing) {}
    bool IsCancelled() override
    {
        if (++asked == turn_ && isThrowing_)
            throw std::runtime_error("cancel");
        return asked == turn_;
    }
    int asked = 0;

private:
    int turn_;
    bool isThrowing_;
};

template <class Engine>
void ExpectCancelsEverywhere(MARegSettings settings)
{
    const Rows rows = RandomStudies(121, 6, 1);
    CancelAt never(0);
    settings.SetCancelObject(&never);
    ASSERT_TRUE(Regression<Engine>(settings, rows).status.IsOK());
    ASSERT_GT(never.asked, 6) << "once a record, and once a fit";
    for (int turn = 1; turn <= never.asked; ++turn) {
        for (const bool isThrowing : {false, true}) {
            SCOPED_TRACE(turn);
            CancelAt cancel(turn, isThrowing);
            settings.SetCancelObject(&cancel);
            ExpectFailed(Regression<Engine>(settings, rows), 460012);
            EXPECT_EQ(cancel.asked, turn) << "the work stops at once";
        }
    }
}

struct Reports : ProgressListener
{
    void Report(long done, long total) override
    {
        EXPECT_EQ(total, 0);
        steps.push_back(done);
        if (isThrowing)
            throw std::runtime_error("listener");
    }
    std::vector<long> steps;
    bool isThrowing = false;
};

} // namespace

TEST(MARegAlgorithmFailures, HostCancels)
{
    MARegSettings settings = RegressionOn({2});
    settings.SetMultiDiser(true);
    ExpectCancelsEverywhere<MAFEAlgorithm>(settings);
    for (const char* const code : codes) {
        SCOPED_TRACE(code);
        settings.SetEstTauType(code);
        ExpectCancelsEverywhere<MAREAlgorithm>(settings);
    }
}

/// Records are counted anew in every pass.
TEST(MARegAlgorithmFailures, ListenersHearAndMayThrow)
{
    const Rows rows = RandomStudies(131, 7, 1);
    MARegSettings settings = RegressionOn({2});
    Reports records, fits;
    settings.SetRecProgressListener(&records);
    settings.SetIterProgressListener(&fits);
    settings.SetNSkippedReports(2);
    EXPECT_TRUE(FERegression(settings, rows).status.IsOK());
    ASSERT_GE(records.steps.size(), 2U);
    for (std::size_t i = 0; i < records.steps.size(); ++i)
        EXPECT_EQ(records.steps[i], i % 2 == 0 ? 3 : 6);
    EXPECT_TRUE(fits.steps.empty());
    settings.SetNSkippedReports(0);
    EXPECT_TRUE(FERegression(settings, rows).status.IsOK());
    EXPECT_EQ(fits.steps, std::vector<long>{1});
    fits.isThrowing = true;
    ExpectFailed(settings, rows, 460012);
    records.isThrowing = true;
    ExpectFailed(settings, rows, 460012);
}

/// Numbers that strain the arithmetic: no NaN among the coefficients, no tau² below 0.
TEST(MARegAlgorithmFailures, HostileNumbers)
{
    const Rows cases[] = {
        {{1e200, 1, 1}, {-1e200, 1, 2}, {0, 1, 3}, {1, 1, 4}},
        {{1e60, 1e120, 1}, {-3e60, 2e120, 2}, {7e60, 3e120, 5}, {2e60, 1e120, 7}},
        {{1e-60, 1e-120, 1}, {-3e-60, 2e-120, 2}, {7e-60, 3e-120, 5}, {2e-60, 1e-120, 7}},
        {{0.1, 1e-30, 1}, {0.2, 1, 2}, {0.3, 1e30, 3}, {0.5, 1, 4}},
        {{0.1, 1, 1e160}, {0.2, 1, -1e160}, {0.3, 1, 3e160}, {0.5, 1, 0}},
        {{0.1, 1e-300, 1e-170}, {0.2, 1e-300, -1e-170}, {0.3, 1e-300, 0}, {0.5, 1e-300, 0}},
        {{0.1, 1e300, 1}, {0.2, 1e300, 2}, {0.3, 1e300, 3}, {0.5, 1e300, 5}},
    };
    const auto hasNaN = [](const std::vector<double>& values) {
        return std::any_of(values.begin(), values.end(), [](double value) { return std::isnan(value); });
    };
    for (const Rows& rows : cases) {
        for (const char* const code : codes) {
            SCOPED_TRACE(testing::PrintToString(rows) + code);
            MARegSettings settings = RegressionOn({2});
            settings.SetEstTauType(code);
            settings.SetMultiDiser(true);
            settings.SetKnapHartAdjust(true);
            const RERegression random(settings, rows);
            EXPECT_GE(random.output->GetTau(), 0.0);
            EXPECT_FALSE(hasNaN(random.output->GetEstimation()));
            EXPECT_FALSE(hasNaN(FERegression(settings, rows).output->GetEstimation()));
        }
    }
}
