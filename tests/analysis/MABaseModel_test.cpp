// What the analyses share, tested through both of them.

#include "support/Compare.h"
#include "support/FaultyRecordIter.h"
#include "support/FinishedRun.h"

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <numeric>
#include <type_traits>

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
    char expected;         ///< (v)alid, (m)issing or (i)nvalid
    double variance = 0.0; ///< of a valid study
};

const ReadyMade readyMadeCases[] = {
    {"variance", {0.5, 4, 7}, 1, false, 'v', 4},
    {"standard error", {0.5, 4, 7}, 2, false, 'v', 49},
    {"variance wins", {0.5, 4, 7}, 3, false, 'v', 4},
    {"missing variance wins", {0.5, missing, 7}, 3, false, 'm'},
    {"neither", {0.5, 4, 7}, 0, false, 'i'},
    {"neither, missing effect", {missing, 4, 7}, 0, false, 'm'},
    {"missing effect", {missing, 4, 7}, 1, false, 'm'},
    {"NaN effect", {notANumber, 4, 7}, 1, false, 'm'},
    {"NaN standard error", {0.5, 4, notANumber}, 2, false, 'm'},
    {"missing before invalid", {missing, 0, 7}, 1, false, 'm'},
    {"zero variance", {0.5, 0, 7}, 1, false, 'i'},
    {"negative variance", {0.5, -4, 7}, 1, false, 'i'},
    {"zero standard error", {0.5, 4, 0}, 2, false, 'i'},
    {"negative standard error", {0.5, 4, -7}, 2, false, 'i'},
    {"large difference of risks", {1.5, 4, 7}, 1, true, 'i'},
    {"large negative difference of risks", {-1.5, 4, 7}, 1, true, 'i'},
    {"largest difference of risks", {1, 4, 7}, 1, true, 'v', 4},
    {"large effect otherwise", {1.5, 4, 7}, 1, false, 'v', 4},
    {"short record", {0.5}, 1, false, 'm'},
};

struct ExpectedFault
{
    FaultyRecordIter::Fault fault;
    int code;
};

const ExpectedFault faults[] = {
    {FaultyRecordIter::NO_FAULT, 0},
    {FaultyRecordIter::REPORTS_ERROR, MAStatusCode::ITERATOR_FAILED},
    {FaultyRecordIter::REFUSES_START, MAStatusCode::ITERATOR_NOT_STARTED},
    {FaultyRecordIter::BREAKS_OFF, MAStatusCode::ITERATOR_FAILED},
    {FaultyRecordIter::THROWS_IN_START, MAStatusCode::ITERATOR_FAILED},
    {FaultyRecordIter::THROWS_IN_NEXT, MAStatusCode::ITERATOR_FAILED},
    {FaultyRecordIter::THROWS_IN_GET_ERROR, MAStatusCode::ITERATOR_FAILED},
    {FaultyRecordIter::THROWS_A_NUMBER, MAStatusCode::ITERATOR_FAILED},
    {FaultyRecordIter::RUNS_OUT_OF_MEMORY, MAStatusCode::OUT_OF_MEMORY},
};

/// Whether a value is there and a number.
bool IsNumber(double value)
{
    return std::isfinite(value) && value != missing;
}

/// The results of a run on k studies: which are numbers, which missing.
void ExpectPattern(const MABaseModel& model, std::size_t k, const MAModelSettings& settings)
{
    const bool isRandom = settings.GetModelType() == MODEL_RANDOM;
    const bool isAdjusted = isRandom && settings.GetKnapHartAdjustType() != KNAPP_HARTUNG_NONE;
    ASSERT_EQ(model.GetEstEffectSize().size(), 1U);
    ASSERT_EQ(model.GetHomoTestChisquareQ().size(), 1U);
    EXPECT_EQ(IsNumber(model.GetEstEffectSize()[0]), k > 0);
    EXPECT_NE(model.GetEstEffectSize()[0], missing);
    EXPECT_EQ(IsNumber(model.GetEstSig()[0]), isAdjusted ? k > 1 : k > 0);
    EXPECT_EQ(model.GetEstSig()[0] == missing, isAdjusted && k < 2);
    EXPECT_EQ(model.GetEstCILower()[0] == missing, isAdjusted && k < 2);
    EXPECT_EQ(IsNumber(model.GetPIUpper()[0]), isRandom && k > 2);
    EXPECT_EQ(model.GetPIUpper()[0] == missing, !isRandom || (isAdjusted && k < 3));
    EXPECT_TRUE(isRandom ? model.GetTau2Var()[0] >= 0.0 : model.GetTau2Var()[0] == missing);
    EXPECT_TRUE(!isRandom || k > 1 || model.GetTau2Var()[0] == 0.0);
    EXPECT_EQ(IsNumber(model.GetHomoTestChisquareQ()[0]), k > 1);
    EXPECT_EQ(model.GetHomoTestSig()[0] == missing, k < 2);
    EXPECT_EQ(model.GetHomoTestdf()[0], k > 1 ? static_cast<double>(k) - 1 : missing);
    EXPECT_EQ(IsNumber(model.GetI2Index()[0]), k > 1);
    EXPECT_EQ(IsNumber(model.GetI2CIUpper()[0]), !isRandom && k > 2); // Q is below 2 for the first two
    EXPECT_EQ(model.GetGroupN(), k > 0 ? std::vector<int>{static_cast<int>(k)} : std::vector<int>{});
    EXPECT_EQ(model.GetUniGroup(), k > 0 ? std::vector<double>{-1.0} : std::vector<double>{});
    EXPECT_EQ(model.GetWeight().size(), k);
    EXPECT_TRUE(k != 1 || Close(model.GetEstEffectSize(), model.GetEffectSize(), 1e-14));
}

/// One of the combinations of model, weights, adjustment, and contrasts with or without coefficients.
constexpr int variantCount = 24;
MAModelSettings Variant(MAModelSettings settings, int variant, std::size_t recordCount)
{
    settings.SetModelType(variant & 1 ? MODEL_RANDOM : MODEL_FIXED);
    settings.SetWeightType(variant & 2 ? WEIGHT_BINARY_FIXED : WEIGHT_INVERSE_VARIANCE);
    settings.SetKnapHartAdjustType(static_cast<KNAPPHADJTYPE>(variant / 8));
    if (variant & 4) {
        settings.SetContrastCoefIndex({0, 1});
        settings.SetInputContrastCoef(std::vector<double>(recordCount));
    }
    return settings;
}

/// In the order in which a run adds them.
std::vector<int> ExpectedWarnings(const MAModelSettings& settings, std::size_t k, bool isBinary)
{
    using namespace MAStatusCode;
    const bool isFixed = settings.GetModelType() == MODEL_FIXED;
    std::vector<int> codes;
    if (settings.GetInputContrastCoef().size() != k)
        codes.push_back(CONTRAST_COUNT_MISMATCH);
    if (isFixed && !settings.GetContrastCoefIndex().empty())
        codes.push_back(FIXED_MODEL_WITH_CONTRAST);
    if (k == 1 || k == 2)
        codes.push_back(k == 1 ? ONE_STUDY : TWO_STUDIES);
    if (settings.GetInputESType() == INPUT_READY_MADE)
        codes.insert(codes.end(), {READY_MADE_EFFECTS, READY_MADE_EFFECTS_AGAIN});
    if (isBinary && isFixed && settings.GetWeightType() == WEIGHT_INVERSE_VARIANCE)
        codes.push_back(BINARY_FIXED_INVERSE_VARIANCE);
    if (isBinary && !isFixed)
        codes.push_back(BINARY_RANDOM_EFFECTS);
    return codes;
}

} // namespace

TEST(MABaseModel, ClassificationOfReadyMadeEffects)
{
    for (const ReadyMade& row : readyMadeCases) {
        SCOPED_TRACE(row.name);
        MAModelSettings settings = row.isRiskDifference ? BinaryEffectSettings() : EffectSettings();
        settings.SetBinaryEstType(BIN_RISK_DIFFERENCE);
        settings.SetInputVarianceIndex(row.dispersion & 1 ? 1 : -1);
        settings.SetInputStdErrorIndex(row.dispersion & 2 ? 2 : -1);
        const FinishedRun<MABinModel> run(settings, {row.record, {0.1, 1, 1}});
        EXPECT_TRUE(run.status.IsOK());
        const bool isValid = row.expected == 'v';
        EXPECT_EQ(run.model.GetNMissing(), row.expected == 'm' ? 1 : 0);
        EXPECT_EQ(run.model.GetNonMissingStudyID().size(), (row.dispersion == 0 ? 0U : 1U) + isValid);
        EXPECT_EQ(run.model.GetNInvalid(), (row.expected == 'i' ? 1 : 0) + (row.dispersion == 0 ? 1 : 0));
        if (!isValid)
            continue;
        const double stdError = std::sqrt(row.variance);
        EXPECT_EQ(run.model.GetVariance().at(0), row.variance);
        EXPECT_EQ(run.model.GetStdError().at(0), stdError);
        EXPECT_EQ(run.model.GetZVal().at(0), row.record[0] / stdError);
        EXPECT_DOUBLE_EQ(run.model.GetCILower().at(0), row.record[0] - 1.959963984540054 * stdError);
        EXPECT_DOUBLE_EQ(run.model.GetExpEffectSize().at(0), std::exp(row.record[0]));
        EXPECT_DOUBLE_EQ(run.model.GetExpVariance().at(0), std::exp(row.variance)); // as it stands
        EXPECT_DOUBLE_EQ(run.model.GetExpStdError().at(0), std::exp(stdError));
        EXPECT_DOUBLE_EQ(run.model.GetExpCIUpper().at(0), std::exp(run.model.GetCIUpper()[0]));
    }
    // Exponentials that overflow.
    const MAModelSettings settings = BinaryEffectSettings();
    const FinishedRun<MABinModel> huge(settings, {{800, 0.5}});
    EXPECT_EQ(huge.model.GetExpEffectSize(), Row{0.0});
    EXPECT_EQ(huge.model.GetEstExpEffectSize(), Row{missing});

    MAModelSettings noEffects = EffectSettings();
    noEffects.SetInputEffectSizeIndex(-1);
    EXPECT_EQ(FinishedRun<MAContModel>(noEffects, effects).model.GetNMissing(), 3);
}

TEST(MABaseModel, NoneOneTwoAndThreeStudies)
{
    ForAllInputs([](auto* driver, const MAModelSettings& base, const Rows& rows) {
        constexpr bool isBinary = std::is_same_v<decltype(driver), MABinModel*>;
        for (int variant = 0; variant < variantCount; ++variant) {
            for (std::size_t k = 0; k <= rows.size(); ++k) {
                SCOPED_TRACE(testing::Message() << "variant " << variant << ", k " << k);
                const MAModelSettings settings = Variant(base, variant, k);
                const Rows first(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(k));
                const RunOf<decltype(driver)> run(settings, first);
                EXPECT_TRUE(run.status.IsOK());
                ExpectPattern(run.model, k, settings);
                EXPECT_EQ(run.WarningCodes(), ExpectedWarnings(settings, k, isBinary));
            }
        }
    });
}

TEST(MABaseModel, FaultsOfTheRecordIterator)
{
    ForAllInputs([](auto* driver, const MAModelSettings& settings, const Rows& rows) {
        const int passes = settings.GetInputESType() == INPUT_RAW ? 2 : 1;
        for (int pass = 1; pass <= passes; ++pass) {
            for (const ExpectedFault& row : faults) {
                SCOPED_TRACE(testing::Message() << "fault " << row.fault << ", pass " << pass);
                FaultyRecordIter records(rows, row.fault, pass);
                std::remove_pointer_t<decltype(driver)> model(settings);
                EXPECT_EQ(model.RUN(records, KXVarList()), KXStatus(row.code));
                EXPECT_EQ(model.GetEstEffectSize().empty(), row.code != 0);
            }
        }
    });
}

TEST(MABaseModel, DirectBuilds)
{
    const MAModelSettings settings;
    const std::vector<double> two = {1, 2};
    const std::vector<double> three = {1, 2, 3};
    const KXStatus refused(MAStatusCode::LENGTH_MISMATCH);
    MABaseModel model(settings);
    EXPECT_EQ(model.BuildModel(two, three), refused);
    EXPECT_EQ(model.BuildModel({}, three), refused);
    EXPECT_EQ(model.BuildOnlyTestModel(three, two), refused);
    EXPECT_TRUE(model.GetEstEffectSize().empty());
    EXPECT_TRUE(model.GetTau2Var().empty());

    EXPECT_TRUE(model.BuildModel(three, three).IsOK());
    EXPECT_TRUE(model.BuildOnlyTestModel(two, two).IsOK());
    EXPECT_EQ(model.GetEstEffectSize().size(), 1U);
    EXPECT_EQ(model.GetHomoTestdf(), (std::vector<double>{2, 1}));
    EXPECT_EQ(model.GetTau2Var().size(), 2U);
    EXPECT_TRUE(model.GetWeight().empty()); // not the weights of the studies, of which there are none

    VectorRecordIter records(tables);
    EXPECT_TRUE(model.ESCalc(records).IsOK());
    EXPECT_TRUE(model.GetEffectSize().empty());
}

TEST(MABaseModel, WeightsAreInverseVariances)
{
    ForAllInputs([](auto* driver, const MAModelSettings& settings, const Rows& rows) {
        const RunOf<decltype(driver)> run(settings, rows);
        const std::vector<double> weights = run.model.GetWeight();
        const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_DOUBLE_EQ(weights.at(i), 1 / (run.model.GetTau2Var()[0] + run.model.GetVariance()[i]));
            EXPECT_DOUBLE_EQ(run.model.GetNormalizedWeight().at(i), weights[i] / sum);
        }
    });
}
