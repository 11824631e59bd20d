// Every allocation of an operation fails in turn, alone and with all after it. An executable of its own, for
// it replaces operator new.

#include "faults/FailingMemory.h"
#include "faults/FullRecords.h"
#include "faults/Getters.h"
#include "faults/Results.h"
#include "support/BulkColumns.h"
#include "support/Regression.h"

#include "meta_analysis/bulk/MABulkPooling.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <functional>
#include <memory>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

using Codes = std::vector<int>;

/// What an operation returned, and what it leaves when that is no error.
struct Outcome
{
    KXStatus status;
    Results results;
};

/// Something to do, when memory is short.
using Operation = std::function<Outcome()>;

void ExpectSurvives(const Operation& operation, const Results& complete, const Codes& errors)
{
    Outcome outcome;
    EXPECT_NO_THROW(outcome = operation());
    FailingMemory::Relent();
    if (outcome.status.IsError())
        EXPECT_NE(std::find(errors.begin(), errors.end(), outcome.status.GetCode()), errors.end())
            << outcome.status.GetCode();
    else
        EXPECT_EQ(FirstDifference(outcome.results, complete), "") << "is not what it would be";
}

/// Makes the operation anew, has each of its allocations fail in turn, and expects one of the errors or,
/// where it can do without, all of its results; and every byte back.
void ExpectSurvivesShortage(const std::string& name, const std::function<Operation()>& make,
                            const Codes& errors = {MAStatusCode::OUT_OF_MEMORY})
{
    if (testing::Test::HasFailure())
        return; // a failure takes memory for its message
    SCOPED_TRACE(name);
    const Results complete = make()().results;
    FailingMemory::Relent();
    // Under the sanitizers every other allocation fails alone, and the others fail with all after them.
    constexpr long stride = Repetitions(10) == 10 ? 1 : 2;
    for (const bool forGood : {false, true}) {
        bool hasFailed = true;
        for (long n = forGood ? stride : 1; hasFailed && !testing::Test::HasFailure(); n += stride) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (forGood ? " and all after it" : ""));
            const long before = FailingMemory::LiveCount();
            {
                const Operation operation = make();
                FailingMemory::FailAt(n, forGood);
                ExpectSurvives(operation, complete, errors);
                hasFailed = FailingMemory::HasFailed();
            }
            EXPECT_EQ(FailingMemory::LiveCount(), before) << "something is leaked";
        }
    }
}

/// ... of an operation for which nothing is made beforehand.
void ExpectSurvivesShortage(const std::string& name, const Operation& operation)
{
    ExpectSurvivesShortage(name, [&] { return operation; });
}

/// Without the small-study tests that may fail without an error: that of a run, and those of groups, which
/// have a flag; and without the warnings.
template <class Driver>
Results EssentialResults(const Driver& model)
{
    FailingMemory::Relent();
    Results results = ResultsOf(model);
    const bool isGrouped = model.GetUniGroup().size() > 1;
    std::erase_if(results, [&](const Result& result) {
        const bool isOfGroups = result.name.starts_with("GetRegr") || result.name.starts_with("GetIfRegr");
        return result.name.find("RegBasedTest") != std::string::npos || result.name == "GetWarnings" ||
               (isGrouped && isOfGroups);
    });
    return results;
}

/// A way to analyse the records.
struct Wish
{
    MAModelSettings Of(MAModelSettings settings) const
    {
        settings.SetModelType(model);
        settings.SetWeightType(weight);
        settings.SetSubGroupIndex(group);
        settings.SetCommulativeIndex(order);
        settings.SetContrastCoefIndex({CONTRAST});
        settings.SetInfluence(true);
        settings.SetIsTRIMFILL(true);
        settings.SetTrimFillSide(TRIM_SIDE_LARGEST);
        settings.SetFunnelConTourTesType(CONTOUR_TWO_SIDED);
        settings.SetFunnelNPoints(3);
        settings.SetBubbleCurveNPoints(3);
        return settings;
    }

    const char* name;
    MODELTYPE model;
    WEIGHTYPE weight;
    int group = -1;
    int order = -1;
};

void PrintTo(const Wish& wish, std::ostream* out)
{
    *out << wish.name;
}

/// A run, and what may follow it.
template <class Driver>
class Analysis
{
public:
    explicit Analysis(const MAModelSettings& settings)
        : settings_(settings),
          records_(fullRecords),
          variables_(VariablesOf(fullRecords)),
          finished_(settings_)
    {
        regression_.SetInterceptUse(true);
        regression_.SetEstTauType("REML");
        regression_.AddCovariate(COVARIATE);
        finished_.RUN(records_, variables_);
    }

    void ExpectOperationsSurvive()
    {
        // A record that cannot be made is a failure of the iterator that makes it.
        const Codes ofTest = {MAStatusCode::OUT_OF_MEMORY,       MAStatusCode::TAU2_FAILED,
                              MAStatusCode::ITERATOR_FAILED,     MAStatusCode::RECORD_NOT_RESIZED,
                              MAStatusCode::TEST_WITHOUT_OUTPUT, MAStatusCode::TEST_COVARIATE_REFUSED};
        Expect("RUN", Driver(settings_), {MAStatusCode::OUT_OF_MEMORY},
               [this](Driver& model) { return model.RUN(records_, variables_); });
        Expect("RegBasedTest", finished_, ofTest,
               [this](Driver& model) { return model.RegBasedTest(records_, variables_, regression_); });
        Expect("BubblePlot", finished_, ofTest,
               [this](Driver& model) { return model.BubblePlot(records_, variables_, regression_); });
    }

    /// Copies taken through getters are empty when there is no memory for them.
    void ExpectGettersSurvive()
    {
        VisitGetters(&finished_, [this](const char* name, auto getter) {
            for (long n = 1; n < 20; ++n) {
                SCOPED_TRACE(name);
                const long before = FailingMemory::LiveCount();
                FailingMemory::FailAt(n, true);
                EXPECT_NO_THROW((finished_.*getter)());
                FailingMemory::Relent();
                EXPECT_EQ(FailingMemory::LiveCount(), before);
            }
        });
    }

private:
    template <class Step>
    void Expect(const char* name, const Driver& before, const Codes& errors, const Step& step)
    {
        const auto make = [&] {
            return [&step, model = std::make_shared<Driver>(before)] {
                const KXStatus status = step(*model);
                return Outcome{status, EssentialResults(*model)};
            };
        };
        ExpectSurvivesShortage(name, make, errors);
    }

    MAModelSettings settings_;
    MARegSettings regression_;
    VectorRecordIter records_;
    KXVarList variables_;
    Driver finished_;
};

template <class Engine>
void ExpectEngineSurvives(const MARegSettings& settings, const Rows& rows)
{
    VectorRecordIter records(rows);
    const auto make = [&] {
        return [&, engine = std::make_shared<Engine>(settings)] {
            const KXStatus status = engine->BuildModel(records);
            FailingMemory::Relent();
            return Outcome{status, ResultsOf(MARegOutputStats(settings, *engine))};
        };
    };
    ExpectSurvivesShortage("BuildModel", make);

    Engine built(settings);
    ASSERT_TRUE(built.BuildModel(records).IsOK());
    const Record record(rows[0]);
    ExpectSurvivesShortage("Score", [&] {
        double fit = 0.0;
        double unused = 0.0;
        const KXStatus status = built.Score(record, fit, unused, unused, unused, unused, unused, unused);
        FailingMemory::Relent();
        return Outcome{status, {{"fit", {{fit}}}}};
    });
    ExpectSurvivesShortage("BubblePlot", [&] {
        MARegBubblePlot plot;
        const KXStatus status = built.BubblePlot(records, 2, 3, plot);
        FailingMemory::Relent();
        return Outcome{status, {{"line", {plot.lineEffects}}}};
    });
    FailingMemory::FailAt(1, true);
    const MARegOutputStats output(settings, built);
    EXPECT_NO_THROW(built.GetParameters());
    EXPECT_NO_THROW(built.GetEffectInfo());
    EXPECT_NO_THROW(built.GetFactorCounts());
    FailingMemory::Relent();
}

} // namespace

/// The columns of the tables as events and person-time.
MAModelSettings RatesSettings()
{
    MAModelSettings settings = TableSettings();
    settings.SetOutcomesType(OUTCOME_MEASURED);
    settings.SetOutcomeMeasure(RATES_RATIO);
    settings.SetTreatmentTimeIndex(1);
    settings.SetControlTimeIndex(3);
    return settings;
}

class OutOfMemoryInAnalyses : public testing::TestWithParam<Wish>
{};

INSTANTIATE_TEST_SUITE_P(
    All, OutOfMemoryInAnalyses,
    testing::Values(Wish{"random effects", MODEL_RANDOM, WEIGHT_INVERSE_VARIANCE},
                    Wish{"random effects of groups", MODEL_RANDOM, WEIGHT_INVERSE_VARIANCE, GROUP},
                    Wish{"random effects, cumulative", MODEL_RANDOM, WEIGHT_INVERSE_VARIANCE, GROUP, RANK},
                    Wish{"fixed effect", MODEL_FIXED, WEIGHT_INVERSE_VARIANCE},
                    Wish{"Mantel-Haenszel of groups", MODEL_FIXED, WEIGHT_BINARY_FIXED, GROUP},
                    Wish{"Mantel-Haenszel, cumulative", MODEL_FIXED, WEIGHT_BINARY_FIXED, GROUP, RANK}));

TEST_P(OutOfMemoryInAnalyses, IsReported)
{
    Analysis<MABinModel> ofTables(GetParam().Of(TableSettings()));
    ofTables.ExpectOperationsSurvive();
    ofTables.ExpectGettersSurvive();
    Analysis<MAOutcomeModel> ofRates(GetParam().Of(RatesSettings()));
    ofRates.ExpectOperationsSurvive();
    ofRates.ExpectGettersSurvive();
    if (GetParam().weight == WEIGHT_BINARY_FIXED)
        return; // which is for tables alone
    Analysis<MAContModel>(GetParam().Of(MeansSettings())).ExpectOperationsSurvive();
    Analysis<MAContModel>(GetParam().Of(EffectSettings(CONTRAST))).ExpectOperationsSurvive();
}

TEST(OutOfMemory, IsReportedByRegressions)
{
    Rows rows = RandomStudies(1, 9, 1);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].push_back(static_cast<double>(i % 3));
    for (const char* const code : {"DL", "SJ", "REML"}) {
        SCOPED_TRACE(code);
        MARegSettings settings = RegressionOn({2}, {3});
        settings.SetEstTauType(code);
        settings.SetCluster(3);
        settings.SetPermutations(2);
        settings.SetHypotheses({{0, 1, 0, 0, 0}, {1, 0, 1, 0, 0}});
        settings.SetPredictions({Record(rows[0])});
        settings.SetReferenceLevel(3, 1);
        ExpectEngineSurvives<MAFEAlgorithm>(settings, rows);
        ExpectEngineSurvives<MAREAlgorithm>(settings, rows);
    }
}

TEST(OutOfMemory, RegressionSettings)
{
    ExpectSurvivesShortage("filled", [&] {
        MARegSettings settings;
        KXModelEffect effect;
        const bool isFilled = settings.SetDependent(0) && settings.AddCovariate(2) == 0 &&
                              settings.AddFactor(3, 2) == 0 && effect.AddCovariate(2) &&
                              settings.AddModelEffect(effect);
        return Outcome{isFilled ? KXStatus() : KXStatus(MAStatusCode::OUT_OF_MEMORY), {}};
    });
}

/// Sets of ten studies each, and what one call on them returns.
struct ManySets
{
    explicit ManySets(std::size_t count) : setCount(count), columns(count)
    {
        for (const Row& row : RandomStudies(3, count * 10, 0)) {
            effects.push_back(row[0]);
            variances.push_back(row[1]);
        }
        for (std::size_t set = 0; set <= count; ++set)
            offsets.push_back(set * 10);
    }
    KXStatus Pool(const MABulkModel& model)
    {
        const MARaggedSets sets{effects.data(), variances.data(), offsets.data(), setCount};
        return PoolSets(sets, model, columns.results);
    }

    std::size_t setCount;
    BulkColumns columns;
    std::vector<double> effects, variances;
    std::vector<std::size_t> offsets;
};

TEST(OutOfMemory, IsReportedByManySets)
{
    MARandomEffectsChoice scored;
    scored.tau2Interval = TAU2_INTERVAL_Q_PROFILE;
    MARandomEffectsChoice searched = scored;
    searched.search = TAU2_SEARCH_GLOBAL;
    MARandomEffectsChoice byLikelihood = searched;
    byLikelihood.tau2Interval = TAU2_INTERVAL_PROFILE_LIKELIHOOD;
    ManySets few(20);
    for (const MABulkModel& model : {MABulkModel(MAFixedEffectChoice()), MABulkModel(scored),
                                     MABulkModel(searched), MABulkModel(byLikelihood)})
        ExpectSurvivesShortage("many sets", [&] {
            const KXStatus status = few.Pool(model);
            FailingMemory::Relent();
            return Outcome{status, {{"columns", {few.columns.values.begin(), few.columns.values.end()}}}};
        });

    // No allocation for a set: as many sets as will do with what a few take.
    ManySets many(5000);
    for (const MABulkModel& model :
         {MABulkModel(MAFixedEffectChoice()), MABulkModel(scored), MABulkModel(searched)}) {
        long allocations = 0;
        do {
            FailingMemory::FailAt(++allocations, true);
            few.Pool(model);
        } while (FailingMemory::HasFailed());
        FailingMemory::FailAt(allocations, true);
        EXPECT_TRUE(many.Pool(model).IsOK());
        EXPECT_FALSE(FailingMemory::HasFailed());
        FailingMemory::Relent();
    }
}
