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
    EXPECT_TRUE(Same(Scores(regression.engine, Row{0.1, 0.1, 1.0}).fit, missing));
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
        ExpectFailed(FERegression(settings, RandomStudies(1, 5, 1)), 460009);
        ExpectFailed(RERegression(settings, RandomStudies(1, 5, 1)), 460009);
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
    const FERegression fixed(settings, rows);
    for (const char* const code : {"", "reml", "REM", "HE "}) {
        SCOPED_TRACE(code);
        settings.SetEstTauType(code);
        const RERegression random(settings, rows);
        EXPECT_TRUE(random.status.IsOK());
        EXPECT_EQ(random.engine.GetEstTauType(), 7);
        EXPECT_EQ(random.output->GetTau(), 0.0);
        EXPECT_EQ(random.output->GetRSquare(), 0.0);
        EXPECT_EQ(random.output->GetIresSquare(), 0.0);
        EXPECT_EQ(random.output->GetHresSquare(), 1.0);
        const double slope = fixed.output->GetEstimation()[1];
        EXPECT_TRUE(Close(random.output->GetEstimation()[1], slope, 1e-13, 1.0));
    }
}

/// By estimator; the figures of ML hold for REML and EB.
TEST(MARegAlgorithmFailures, TooFewUsableRecords)
{
    const Row good = {0.3, 0.2, 1.5};
    const Row bad = {0.3, 0.0, 1.5};
    struct Case
    {
        const char* name;
        Rows rows;
        int fixed, he, hs, dl, sj, ml;
    };
    const Case cases[] = {
        {"none at all", {}, 0, 460015, 0, 0, 0, 460015},
        {"none usable", {bad, bad}, 460073, 460073, 460073, 460073, 460073, 460073},
        {"one usable", {bad, good, bad}, 0, 460015, 0, 0, 460029, 460015},
        {"one", {good}, 0, 460015, 0, 0, 460029, 460015},
    };
    for (const Case& c : cases) {
        const int expected[] = {c.he, c.hs, c.dl, c.sj, c.ml, c.ml, c.ml};
        for (const std::vector<int>& covariates : {std::vector<int>{}, std::vector<int>{2}}) {
            SCOPED_TRACE(testing::Message() << c.name << ", covariates " << covariates.size());
            MARegSettings settings = RegressionOn(covariates);
            for (const bool hasDispersion : {false, true}) {
                settings.SetMultiDiser(hasDispersion);
                EXPECT_EQ(FERegression(settings, c.rows).status, KXStatus(c.fixed));
            }
            for (std::size_t i = 0; i < std::size(codes); ++i) {
                SCOPED_TRACE(codes[i]);
                settings.SetEstTauType(codes[i]);
                const RERegression random(settings, c.rows);
                if (expected[i] != 0)
                    ExpectFailed(random, expected[i]);
                else
                    EXPECT_TRUE(random.status.IsOK() && random.engine.IsModelBuilt());
            }
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

template <class Engine>
void ExpectBuildEndsWith(int code, FaultyRecordIter::Fault fault, int pass)
{
    SCOPED_TRACE(testing::Message() << "fault " << fault << " in pass " << pass);
    const MARegSettings settings = RegressionOn({2});
    FaultyRewindIter records(RandomStudies(111, 6, 1), fault, pass);
    Engine engine(settings);
    EXPECT_EQ(engine.BuildModel(records), KXStatus(code));
    EXPECT_EQ(engine.GetStatus(), KXStatus(code));
    EXPECT_EQ(engine.IsModelBuilt(), code == 0);
    const MARegOutputStats output(settings, engine);
    EXPECT_EQ(output.GetNGoodRecords(), code == 0 ? 6 : 0);
    EXPECT_EQ(KXMV::IsMissing(Scores(engine, Row{0.1, 0.1, 1.0}).fit), code != 0);
}

} // namespace

/// The passes are the positioning of the iterator (1), the first pass (2) and the pass that builds rows (3).
TEST(MARegAlgorithmFailures, Iterator)
{
    struct Case
    {
        FaultyRecordIter::Fault fault;
        int codes[3]; ///< by pass
    };
    const Case cases[] = {
        {FaultyRecordIter::NO_FAULT, {0, 0, 0}},
        {FaultyRecordIter::REFUSES_START, {460011, 460011, 460012}},
        {FaultyRecordIter::THROWS_IN_START, {460012, 460012, 460012}},
        {FaultyRecordIter::BREAKS_OFF, {0, 460012, 460012}},
        {FaultyRecordIter::REPORTS_ERROR, {460012, 460012, 460012}},
        {FaultyRecordIter::THROWS_IN_NEXT, {0, 460012, 460012}},
        {FaultyRecordIter::THROWS_A_NUMBER, {0, 460012, 460012}},
        {FaultyRecordIter::THROWS_IN_GET_ERROR, {460012, 460012, 460012}},
        {FaultyRecordIter::RUNS_OUT_OF_MEMORY, {0, 460099, 460099}},
    };
    for (const Case& c : cases) {
        for (const int pass : {1, 2, 3}) {
            ExpectBuildEndsWith<MAFEAlgorithm>(c.codes[pass - 1], c.fault, pass);
            ExpectBuildEndsWith<MAREAlgorithm>(c.codes[pass - 1], c.fault, pass);
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
void ExpectCancelsEverywhere(MARegSettings settings, int leastFits)
{
    const Rows rows = RandomStudies(121, 6, 1);
    CancelAt never(0);
    settings.SetCancelObject(&never);
    ASSERT_TRUE(Regression<Engine>(settings, rows).status.IsOK());
    ASSERT_GE(never.asked, 2 * 6 + leastFits) << "once a record in both passes, and once a fit";
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
    ExpectCancelsEverywhere<MAFEAlgorithm>(settings, 1);
    for (const char* const code : codes) {
        SCOPED_TRACE(code);
        settings.SetEstTauType(code);
        ExpectCancelsEverywhere<MAREAlgorithm>(settings, code == std::string("REML") ? 5 : 3);
    }
}

TEST(MARegAlgorithmFailures, ListenersHearAndMayThrow)
{
    const Rows rows = RandomStudies(131, 7, 1);
    MARegSettings settings = RegressionOn({2});
    Reports records, fits;
    settings.SetRecProgressListener(&records);
    settings.SetIterProgressListener(&fits);
    settings.SetNSkippedReports(2);
    EXPECT_TRUE(FERegression(settings, rows).status.IsOK());
    EXPECT_EQ(records.steps, (std::vector<long>{3, 6, 3, 6}));
    EXPECT_TRUE(fits.steps.empty());
    settings.SetNSkippedReports(0);
    EXPECT_TRUE(FERegression(settings, rows).status.IsOK());
    EXPECT_EQ(fits.steps, std::vector<long>{1});

    fits.isThrowing = true;
    ExpectFailed(FERegression(settings, rows), 460012);
    ExpectFailed(RERegression(settings, rows), 460012);
    records.isThrowing = true;
    ExpectFailed(FERegression(settings, rows), 460012);
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
        {{0.1, 1, 1e-170}, {0.2, 1, -1e-170}, {0.3, 1, 3e-170}, {0.5, 1, 0}},
        {{0.1, 1e-300, 1}, {0.2, 1e-300, 2}, {0.3, 1e-300, 3}, {0.5, 1e-300, 5}},
        {{0.1, 1e300, 1}, {0.2, 1e300, 2}, {0.3, 1e300, 3}, {0.5, 1e300, 5}},
    };
    for (const Rows& rows : cases) {
        for (const char* const code : codes) {
            SCOPED_TRACE(testing::Message() << testing::PrintToString(rows) << ' ' << code);
            MARegSettings settings = RegressionOn({2});
            settings.SetEstTauType(code);
            settings.SetMultiDiser(true);
            settings.SetKnapHartAdjust(true);
            const FERegression fixed(settings, rows);
            const RERegression random(settings, rows);
            EXPECT_GE(random.output->GetTau(), 0.0);
            for (const MARegOutputStats* const output : {&*fixed.output, &*random.output}) {
                for (const double b : output->GetEstimation())
                    EXPECT_FALSE(std::isnan(b));
            }
        }
    }
}
