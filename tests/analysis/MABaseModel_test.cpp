// What the analyses share, tested through both of them.

#include "support/FaultyRecordIter.h"
#include "support/PooledFigures.h"
#include "support/Poolings.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <numeric>
#include <stdexcept>
#include <type_traits>
#include <utility>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const Rows tables = {{12, 88, 20, 80}, {15, 85, 25, 75}, {9, 91, 8, 92}};
const Rows means = {{10, 3, 2, 10, 2, 2}, {20, 5, 4, 22, 4, 3}, {15, 1, 2, 12, 1, 2}};
const Rows effects = {{0.3, 0.04}, {0.5, 0.09}, {-0.1, 0.25}};

MAModelSettings BinaryEffectSettings()
{
    MAModelSettings settings = EffectSettings();
    settings.SetOutcomesType(OUTCOME_BINARY);
    return settings;
}

/// Calls `check` with each way to the shared code: a driver, the settings for its input, and some input.
template <class Check>
void ForAllInputs(Check check)
{
    const auto call = [&check](const char* name, auto* driver, const MAModelSettings& settings,
                               const Rows& rows) {
        SCOPED_TRACE(name);
        check(driver, settings, rows);
    };
    call("tables", static_cast<MABinModel*>(nullptr), TableSettings(), tables);
    call("effects of binary outcomes", static_cast<MABinModel*>(nullptr), BinaryEffectSettings(), effects);
    call("means", static_cast<MAContModel*>(nullptr), MeansSettings(), means);
    call("effects", static_cast<MAContModel*>(nullptr), EffectSettings(), effects);
}

template <class Driver>
using RunOf = FinishedRun<std::remove_pointer_t<Driver>>;

struct ReadyMade
{
    const char* name;
    Row record;            ///< effect size, variance, standard error
    int dispersion;        ///< 1 variance, 2 standard error, 3 both are given, 0 neither
    bool isRiskDifference; ///< of a binary outcome
    EXCLUSION reason;
    double variance = 0.0; ///< of a valid study
};

const ReadyMade readyMadeCases[] = {
    {"variance", {0.5, 4, 7}, 1, false, EXCLUSION_NONE, 4},
    {"standard error", {0.5, 4, 7}, 2, false, EXCLUSION_NONE, 49},
    {"variance wins", {0.5, 4, 7}, 3, false, EXCLUSION_NONE, 4},
    {"missing variance wins", {0.5, missing, 7}, 3, false, EXCLUSION_MISSING_VALUE},
    {"neither", {0.5, 4, 7}, 0, false, EXCLUSION_NO_SPREAD_GIVEN},
    {"missing effect", {missing, 4, 7}, 1, false, EXCLUSION_MISSING_VALUE},
    {"NaN effect", {notANumber, 4, 7}, 1, false, EXCLUSION_MISSING_VALUE},
    {"NaN standard error", {0.5, 4, notANumber}, 2, false, EXCLUSION_MISSING_VALUE},
    {"missing before invalid", {missing, 0, 7}, 1, false, EXCLUSION_MISSING_VALUE},
    {"zero variance", {0.5, 0, 7}, 1, false, EXCLUSION_SPREAD_NOT_POSITIVE},
    {"negative variance", {0.5, -4, 7}, 1, false, EXCLUSION_SPREAD_NOT_POSITIVE},
    {"zero standard error", {0.5, 4, 0}, 2, false, EXCLUSION_SPREAD_NOT_POSITIVE},
    {"large difference of risks", {1.5, 4, 7}, 1, true, EXCLUSION_DIFFERENCE_IMPOSSIBLE},
    {"large negative difference of risks", {-1.5, 4, 7}, 1, true, EXCLUSION_DIFFERENCE_IMPOSSIBLE},
    {"largest difference of risks", {1, 4, 7}, 1, true, EXCLUSION_NONE, 4},
    {"large effect otherwise", {1.5, 4, 7}, 1, false, EXCLUSION_NONE, 4},
    {"short record", {0.5}, 1, false, EXCLUSION_MISSING_VALUE},
};

/// Of the estimate, its significance and interval, the prediction interval, tau², Q, its degrees of freedom
/// and significance, I² and its interval: which is a (n)umber, (m)issing or (u)ndefined.
std::string PatternOf(const MABaseModel& model)
{
    std::string pattern;
    for (const Row& column :
         {model.GetEstEffectSize(), model.GetEstSig(), model.GetEstCILower(), model.GetPIUpper(),
          model.GetTau2Var(), model.GetHomoTestChisquareQ(), model.GetHomoTestdf(), model.GetHomoTestSig(),
          model.GetI2Index(), model.GetI2CIUpper()}) {
        const double value = column.size() == 1 ? column[0] : throw std::length_error("not one model");
        pattern += value == missing ? 'm' : std::isfinite(value) ? 'n' : 'u';
    }
    return pattern;
}

/// A model, and its patterns of none, one, two and three studies.
struct Model
{
    MODELTYPE type;
    KNAPPHADJTYPE adjustment;
    const char* patterns[4];
};

const Model models[] = {
    {MODEL_FIXED, KNAPP_HARTUNG_ADJUSTED, {"uuummmmmmm", "nnnmmmmmmm", "nnnmmnnnnm", "nnnmmnnnnn"}},
    {MODEL_RANDOM, KNAPP_HARTUNG_NONE, {"uuuunmmmmm", "nnnunmmmmm", "nnnunnnnnm", "nnnnnnnnnm"}},
    {MODEL_RANDOM, KNAPP_HARTUNG_ADJUSTED, {"ummmnmmmmm", "nmmmnmmmmm", "nnnmnnnnnm", "nnnnnnnnnm"}},
};

/// `variant`: one of the four combinations of weights, and of contrasts with or without coefficients.
MAModelSettings SettingsOf(const Model& model, int variant, MAModelSettings settings, std::size_t recordCount)
{
    settings.SetModelType(model.type);
    settings.SetKnapHartAdjustType(model.adjustment);
    settings.SetWeightType(variant & 1 ? WEIGHT_BINARY_FIXED : WEIGHT_INVERSE_VARIANCE);
    if (variant & 2) {
        settings.SetContrastCoefIndex({0, 1});
        settings.SetInputContrastCoef(Row(recordCount));
    }
    return settings;
}

void ExpectInverseVarianceWeights(const MABaseModel& model, double tau2)
{
    const Row weights = model.GetWeight();
    const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
    for (std::size_t i = 0; i < weights.size(); ++i) {
        EXPECT_TRUE(Close(weights[i], 1 / (tau2 + model.GetVariance()[i]), machineEpsilon));
        EXPECT_TRUE(Close(model.GetNormalizedWeight().at(i), weights[i] / sum, 2 * machineEpsilon));
    }
}

} // namespace

TEST(MABaseModel, ReadyMadeEffectsAreClassified)
{
    for (const ReadyMade& row : readyMadeCases) {
        SCOPED_TRACE(row.name);
        MAModelSettings settings = row.isRiskDifference ? BinaryEffectSettings() : EffectSettings();
        settings.SetBinaryEstType(BIN_RISK_DIFFERENCE);
        settings.SetInputVarianceIndex(row.dispersion & 1 ? 1 : -1);
        settings.SetInputStdErrorIndex(row.dispersion & 2 ? 2 : -1);
        const BinRun run(settings, {row.record});
        EXPECT_TRUE(run.status.IsOK());
        ExpectExcluded(run.model, 1, row.reason);
        EXPECT_EQ(run.model.GetVariance(), row.reason == EXCLUSION_NONE ? Row{row.variance} : Row{});
        ExpectStudyTests(run.model);
        EXPECT_TRUE(Same(run.model.GetExpEffectSize(), Exponentials(run.model.GetEffectSize())));
        EXPECT_TRUE(Same(run.model.GetExpVariance(), Exponentials(run.model.GetVariance()))); // as it stands
        EXPECT_TRUE(Same(run.model.GetExpStdError(), Exponentials(run.model.GetStdError())));
        EXPECT_TRUE(Same(run.model.GetExpCIUpper(), Exponentials(run.model.GetCIUpper())));
    }
    // Exponentials that overflow.
    const BinRun huge(BinaryEffectSettings(), {{800, 0.5}});
    EXPECT_EQ(huge.model.GetExpEffectSize(), Row{infinity});
    EXPECT_EQ(huge.model.GetEstExpEffectSize(), Row{infinity});
}

TEST(MABaseModel, RawDataNeedTheirVariables)
{
    MAModelSettings noTables = TableSettings();
    noTables.SetControlFailureIndex(-1);
    EXPECT_EQ(BinRun(noTables, tables).status, KXStatus(MAStatusCode::INPUT_NOT_GIVEN));
    MAModelSettings noMeans = MeansSettings();
    noMeans.SetControlStdErrorIndex(-1);
    EXPECT_EQ(FinishedRun<MAContModel>(noMeans, means).status, KXStatus(MAStatusCode::INPUT_NOT_GIVEN));
}

TEST(MABaseModel, FewStudiesHaveFewerResults)
{
    ForAllInputs([](auto* driver, const MAModelSettings& base, const Rows& rows) {
        for (const Model& model : models) {
            for (int i = 0; i < 4 * 4; ++i) {
                const int variant = i / 4;
                const auto k = static_cast<std::size_t>(i % 4);
                SCOPED_TRACE(testing::Message() << &model - models << ", variant " << variant << ", k " << k);
                const RunOf<decltype(driver)> run(SettingsOf(model, variant, base, k),
                                                  Rows(rows.begin(), rows.begin() + i % 4));
                EXPECT_TRUE(run.status.IsOK());
                EXPECT_EQ(PatternOf(run.model), model.patterns[k]);
                EXPECT_EQ(run.model.GetUniGroup(), k > 0 ? Row{-1} : Row{});
                EXPECT_EQ(run.model.GetWeight().size(), k);
                const double tau2 = model.type == MODEL_RANDOM ? run.model.GetTau2Var()[0] : 0.0;
                EXPECT_TRUE(k > 1 || tau2 == 0.0);
                EXPECT_TRUE(k != 1 || Close(run.model.GetEstEffectSize(), run.model.GetEffectSize(), 1e-14));
                if (model.type == MODEL_RANDOM || variant % 2 == 0)
                    ExpectInverseVarianceWeights(run.model, tau2);
            }
        }
    });
}

TEST(MABaseModel, FaultsOfTheRecordsEndTheRun)
{
    using Faults = FaultyRecordIter;
    ForAllInputs([&](auto* driver, const MAModelSettings& settings, const Rows& rows) {
        const int passes = settings.GetInputESType() == INPUT_RAW ? 2 : 1;
        for (int pass = 1; pass <= passes; ++pass) {
            for (int fault = 0; fault <= Faults::NO_FAULT; ++fault) {
                SCOPED_TRACE(testing::Message() << "fault " << fault << ", pass " << pass);
                FaultyRecordIter records(rows, static_cast<Faults::Fault>(fault), pass);
                std::remove_pointer_t<decltype(driver)> model(settings);
                EXPECT_EQ(model.RUN(records, KXVarList()), Faults::StatusAfter(fault));
                EXPECT_EQ(model.GetEstEffectSize().empty(), fault != Faults::NO_FAULT);
            }
        }
    });
}

/// The builds are public. They refuse vectors of unequal length, studies that are not complete yet, and
/// effects without tables.
TEST(MABaseModel, BuildsAddUpUnlessLengthsDiffer)
{
    using M = MABinModel;
    static const Row one = {1};
    static const Row two = {1, 2};
    KXStatus (*const calls[])(M&) = {[](M& m) { return m.BuildModel(one, two); },
                                     [](M& m) { return m.BuildOnlyTestModel(two, one); },
                                     [](M& m) { return m.BuildBinModel(one, one, one, two); },
                                     [](M& m) { return m.BuildBinOnlyTestModel(two, one, one, one); },
                                     [](M& m) { return m.BuildBinSubGroupModel(); },
                                     [](M& m) { return m.BuildCumulativeModel(); },
                                     [](M& m) { return m.BuildBinCumulativeModel(); },
                                     [](M& m) { return m.ComputeLabbePlotStatistics(); }};
    MAModelSettings settings = TableSettings();
    settings.SetSubGroupIndex(0);
    settings.SetCommulativeIndex(1);
    M early(settings);
    VectorRecordIter records(tables);
    EXPECT_TRUE(early.ESCalc(records).IsOK());
    M unread(settings);
    BinRun ofEffects(EffectSettings(), effects);
    for (M* const model : {&early, &unread, &ofEffects.model}) {
        for (const auto call : calls)
            EXPECT_EQ(call(*model), KXStatus(MAStatusCode::LENGTH_MISMATCH)) << "call " << &call - calls;
    }
    EXPECT_TRUE(early.GetTau2Var().empty());
    EXPECT_TRUE(unread.BuildModel(two, two).IsOK()); // the error was of those vectors
    EXPECT_TRUE(unread.BuildOnlyTestModel({1, 2, 3}, {1, 2, 3}).IsOK());
    EXPECT_TRUE(unread.BuildBinModel(two, two, two, two).IsOK());
    EXPECT_TRUE(unread.BuildBinOnlyTestModel(one, one, one, one).IsOK());
    EXPECT_EQ(unread.GetEstEffectSize().size(), 2U);
    EXPECT_EQ(unread.GetEstExpEffectSize().back(), 1.0);
    EXPECT_EQ(unread.GetHomoTestdf(), (Row{1, 2, 1, missing}));
    EXPECT_EQ(unread.GetTau2Var().size(), 4U);
    EXPECT_TRUE(unread.GetWeight().empty()); // not the weights of the studies, of which there are none
}
