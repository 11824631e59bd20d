// Records that are not the same in every pass, or not what a pass said they were.

#include "faults/FullRecords.h"
#include "faults/RunChecks.h"
#include "support/Regression.h"

#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

enum Lie : int
{
    FEWER_RECORDS,
    MORE_RECORDS,
    NO_RECORDS,
    SHORTER_RECORDS,
    OTHER_VALUES,
    OTHER_ORDER,
    PAUSE,     ///< null once after the first record, and then the others
    LATE_ERROR ///< after all records
};

const Lie lies[] = {FEWER_RECORDS, MORE_RECORDS, NO_RECORDS, SHORTER_RECORDS,
                    OTHER_VALUES,  OTHER_ORDER,  PAUSE,      LATE_ERROR};

/// What the records become in a pass with the lie.
Rows Falsified(Rows rows, Lie lie)
{
    if (lie == FEWER_RECORDS)
        rows.pop_back();
    else if (lie == MORE_RECORDS)
        rows.push_back(rows[0]);
    else if (lie == NO_RECORDS)
        rows.clear();
    else if (lie == OTHER_ORDER)
        std::reverse(rows.begin(), rows.end());
    for (Row& row : rows) {
        row.resize(lie == SHORTER_RECORDS ? 1 : row.size());
        for (double& value : row)
            value = lie == OTHER_VALUES ? 2.0 * value + 1.0 : value;
    }
    return rows;
}

/// Lies in one pass, of which the first is 1; every start and every rewind begins a pass.
class LyingRecordIter : public MultiPassRecordIter
{
public:
    LyingRecordIter(const Rows& rows, Lie lie, int pass)
        : honest_(rows), falsified_(Falsified(rows, lie)), lie_(lie), pass_(pass)
    {}

    bool Start() override
    {
        ++passes_;
        read_ = 0;
        return Current().Start();
    }
    bool Reset() override { return Start(); }
    const Record* Next() override
    {
        const bool isPause = ++read_ == 2 && Lies(PAUSE);
        record_ = isPause ? nullptr : Current().Next();
        return record_;
    }
    int GetError() const override { return Lies(LATE_ERROR) && read_ > 0 && record_ == nullptr ? 7 : 0; }

private:
    bool Lies(Lie lie) const { return lie_ == lie && passes_ == pass_; }
    VectorRecordIter& Current() { return passes_ == pass_ ? falsified_ : honest_; }

    VectorRecordIter honest_;
    VectorRecordIter falsified_;
    Lie lie_;
    int pass_;
    int passes_ = 0;
    int read_ = 0;
    const Record* record_ = nullptr;
};

MAModelSettings Everything(MAModelSettings settings, MODELTYPE model)
{
    settings.SetModelType(model);
    settings.SetSubGroupIndex(GROUP);
    settings.SetContrastCoefIndex({CONTRAST});
    settings.SetIsTRIMFILL(true);
    return settings;
}

/// A run and what may follow it; the status of the run.
template <class Driver>
KXStatus LyingRun(const MAModelSettings& settings, Lie lie, int pass)
{
    LyingRecordIter records(fullRecords, lie, pass);
    const KXVarList variables = VariablesOf(fullRecords);
    const MARegSettings regression = RegressionOn({COVARIATE});
    Driver model(settings);
    const KXStatus status = model.RUN(records, variables);
    CheckShapesAndRanges({ResultsOf(model), 0.95});
    model.RegBasedTest(records, variables, regression);
    model.BubblePlot(records, variables, regression);
    CheckShapesAndRanges({ResultsOf(model), 0.95});
    return status;
}

/// Whether the second of two passes has the number of records of the first.
bool HasSameCount(Lie lie)
{
    return lie != FEWER_RECORDS && lie != MORE_RECORDS && lie != NO_RECORDS && lie != PAUSE;
}

} // namespace

/// A run reads raw data in its first pass and what goes with the studies in its second. Then the small-study
/// test, which looks whether the records start, reads them twice. The tests and the bubble plots that follow
/// the run have the others.
TEST(LyingIterators, Analyses)
{
    for (const Lie lie : lies) {
        for (int pass = 1; pass <= 9; ++pass) {
            for (const MODELTYPE model : {MODEL_FIXED, MODEL_RANDOM}) {
                SCOPED_TRACE(testing::Message()
                             << "lie " << lie << " in pass " << pass << ", model " << model);
                const bool isFindable = !HasSameCount(lie) || lie == LATE_ERROR;
                const KXStatus failed(MAStatusCode::ITERATOR_FAILED);
                EXPECT_EQ(LyingRun<MABinModel>(Everything(TableSettings(), model), lie, pass) == failed,
                          pass <= 5 && pass != 3 && isFindable);
                LyingRun<MAContModel>(Everything(MeansSettings(), model), lie, pass);
                const bool leavesTooFewToTest = pass == 1 && (lie == NO_RECORDS || lie == PAUSE);
                EXPECT_EQ(LyingRun<MAContModel>(Everything(EffectSettings(CONTRAST), model), lie, pass) ==
                              failed,
                          pass <= 4 && pass != 2 && isFindable && !leavesTooFewToTest);
            }
        }
    }
}
