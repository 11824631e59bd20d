// What can go wrong with a meta-regression: its settings, its records, the host's iterator and listeners.

#include "support/FaultyRecordIter.h"
#include "support/Regression.h"

#include "meta_analysis/platform/common/KXQueryCancel.h"
#include "meta_analysis/platform/common/ProgressListener.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <gmock/gmock.h>

#include <stdexcept>

using namespace MA_NAMESPACE;
using namespace MAStatusCode;

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

TEST(MARegAlgorithmFailures, EffectsOfOtherVariablesAreRefused)
{
    const KXModelEffect unknown[] = {EffectOf({}, {9}), EffectOf({9}, {2}), EffectOf({2}, {}),
                                     EffectOf({}, {0}), KXModelEffect()};
    for (const KXModelEffect& effect : unknown) {
        SCOPED_TRACE(&effect - unknown);
        MARegSettings settings = RegressionOn({2});
        settings.AddModelEffect(effect);
        ExpectFailed(settings, RandomStudies(1, 5, 1), INPUT_NOT_GIVEN);
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
        int closedForm, sidikJonkman, others; ///< of fixed effects, HS and DL; of SJ; of HE, ML, REML and EB
    };
    const Case cases[] = {
        {"none at all", {}, 0, 0, TOO_FEW_ROWS},
        {"none usable", {bad, bad}, NO_USABLE_STUDY, NO_USABLE_STUDY, NO_USABLE_STUDY},
        {"one usable", {bad, good, bad}, 0, ONE_USABLE_STUDY, TOO_FEW_ROWS},
        {"as many as parameters", RandomStudies(1, 2, 1), 0, TOO_FEW_ROWS, TOO_FEW_ROWS},
    };
    for (const Case& c : cases) {
        MARegSettings settings = RegressionOn({2});
        settings.SetMultiDiser(true);
        EXPECT_EQ(FERegression(settings, c.rows).status, KXStatus(c.closedForm)) << c.name;
        for (const std::string code : codes) {
            SCOPED_TRACE(c.name + (" " + code));
            settings.SetEstTauType(code.c_str());
            const RERegression random(settings, c.rows);
            const int expected = code == "SJ"                   ? c.sidikJonkman
                                 : code == "HS" || code == "DL" ? c.closedForm
                                                                : c.others;
            if (expected != 0)
                ExpectFailed(random, expected);
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
TEST(MARegAlgorithmFailures, FaultsOfTheIteratorEndTheBuild)
{
    using F = FaultyRecordIter;
    const std::pair<F::Fault, std::vector<int>> cases[] = {
        {F::NO_FAULT, {0, 0, 0}},
        {F::REFUSES_START, {ITERATOR_NOT_STARTED, ITERATOR_NOT_STARTED, ITERATOR_FAILED}},
        {F::THROWS_IN_START, {ITERATOR_FAILED, ITERATOR_FAILED, ITERATOR_FAILED}},
        {F::BREAKS_OFF, {0, ITERATOR_FAILED, ITERATOR_FAILED}},
        {F::REPORTS_ERROR, {ITERATOR_FAILED, ITERATOR_FAILED, ITERATOR_FAILED}},
        {F::THROWS_IN_NEXT, {0, ITERATOR_FAILED, ITERATOR_FAILED}},
        {F::THROWS_A_NUMBER, {0, ITERATOR_FAILED, ITERATOR_FAILED}},
        {F::THROWS_IN_GET_ERROR, {ITERATOR_FAILED, ITERATOR_FAILED, ITERATOR_FAILED}},
        {F::RUNS_OUT_OF_MEMORY, {0, OUT_OF_MEMORY, OUT_OF_MEMORY}},
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

/// Cancels when asked for the n-th time.
struct CancelAt : KXQueryCancel
{
    explicit CancelAt(int turn) : turn_(turn) {}
    bool IsCancelled() override { return ++asked == turn_; }

    int asked = 0;

private:
    int turn_;
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
        SCOPED_TRACE(turn);
        CancelAt cancel(turn);
        settings.SetCancelObject(&cancel);
        ExpectFailed(Regression<Engine>(settings, rows), ITERATOR_FAILED);
        EXPECT_EQ(cancel.asked, turn) << "the work stops at once";
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

TEST(MARegAlgorithmFailures, HostMayCancelAnywhere)
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
    ExpectFailed(settings, rows, ITERATOR_FAILED);
    records.isThrowing = true;
    ExpectFailed(settings, rows, ITERATOR_FAILED);
}

/// Numbers that strain the arithmetic.
TEST(MARegAlgorithmFailures, ExtremeNumbersGiveNoNaN)
{
    const Rows cases[] = {
        {{1e200, 1, 1}, {-1e200, 1, 2}, {0, 1, 3}, {1, 1, 4}},
        {{1e-60, 1e-120, 1}, {-3e-60, 2e-120, 2}, {7e-60, 3e-120, 5}, {2e-60, 1e-120, 7}},
        {{0.1, 1e-30, 1}, {0.2, 1, 2}, {0.3, 1e30, 3}, {0.5, 1, 4}},
        {{0.1, 1, 1e160}, {0.2, 1, -1e160}, {0.3, 1, 3e160}, {0.5, 1, 0}},
        {{0.1, 1e-300, 1e-170}, {0.2, 1e-300, -1e-170}, {0.3, 1e-300, 0}, {0.5, 1e-300, 0}},
        {{0.1, 1e300, 1}, {0.2, 1e300, 2}, {0.3, 1e300, 3}, {0.5, 1e300, 5}},
    };
    for (const Rows& rows : cases) {
        for (const char* const code : codes) {
            SCOPED_TRACE(testing::PrintToString(rows) + code);
            MARegSettings settings = RegressionOn({2});
            settings.SetEstTauType(code);
            settings.SetKnapHartAdjust(true);
            const RERegression random(settings, rows);
            EXPECT_GE(random.output->GetTau(), 0.0);
            EXPECT_THAT(random.output->GetEstimation(), testing::Each(testing::Not(testing::IsNan())));
        }
    }
}
