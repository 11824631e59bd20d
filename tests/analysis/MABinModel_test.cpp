#include "support/PooledFigures.h"
#include "support/Tables.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const char* const measures[] = {"OR", "PETO", "RR", "RD"};
const char* const adjustments[] = {"only0", "if0all", "all", "none"};
const char* const dataSets[] = {"bcg_vaccine", "magnesium", "beta_blockers"};

MAModelSettings SettingsFor(const DataSet& data, int measure, int adjustment)
{
    MAModelSettings settings = TableSettings(data.IndexOf("treatment_events"));
    settings.SetBinaryEstType(static_cast<BINESTYPE>(measure));
    settings.SetBinZeroAdjType(static_cast<ZEROADJTYPE>(adjustment));
    return settings;
}

MAModelSettings MantelHaenszel(MAModelSettings settings)
{
    settings.SetModelType(MODEL_FIXED);
    settings.SetWeightType(WEIGHT_BINARY_FIXED);
    return settings;
}

/// Each figure is a study's, or is undefined (or without variance), and then the study is not there.
void ExpectStudies(const MABinModel& model, const nlohmann::json& figures)
{
    std::size_t next = 0;
    for (std::size_t record = 0; record < figures.at("yi").size(); ++record) {
        SCOPED_TRACE(testing::Message() << "record " << record);
        const double variance = Number(figures.at("vi").at(record));
        if (!(variance > 0))
            continue;
        ASSERT_LT(next, model.GetNonMissingStudyID().size());
        EXPECT_EQ(model.GetNonMissingStudyID()[next], static_cast<int>(record));
        EXPECT_TRUE(Close(model.GetEffectSize().at(next), Number(figures.at("yi").at(record)), studyTolerance,
                          1e-3)); // differences of logarithms and risks
        EXPECT_TRUE(Close(model.GetVariance().at(next), variance, studyTolerance));
        ++next;
    }
    EXPECT_EQ(model.GetEffectSize().size(), next);
    EXPECT_EQ(model.GetNInvalid(), static_cast<int>(figures.at("yi").size() - next));
    ExpectStudyTests(model);
}

struct Classification
{
    const char* name;
    Row table;
    bool drops;
    ZEROADJTYPE adjustment;
    char expected;         ///< (v)alid, (m)issing, (i)nvalid or (d)ropped
    bool warns = false;    ///< of zero cells in both arms
    double constant = 0.5; ///< of the zero-cell correction
};

const Classification classifications[] = {
    {"full", {1, 2, 3, 4}, true, ZERO_ADJUST_NONE, 'v'},
    {"missing cell", {1, missing, 3, 4}, true, ZERO_ADJUST_EACH, 'm'},
    {"missing before negative", {-1, missing, 3, 4}, true, ZERO_ADJUST_NONE, 'm'},
    {"NaN is missing", {1, 2, notANumber, 4}, false, ZERO_ADJUST_EACH, 'm'},
    {"negative", {1, 2, -3, 4}, false, ZERO_ADJUST_EACH, 'i'},
    {"four zeros", {0, 0, 0, 0}, false, ZERO_ADJUST_EACH, 'i'},
    {"four zeros are not dropped", {0, 0, 0, 0}, true, ZERO_ADJUST_EACH, 'i'},
    {"four zeros, no correction", {0, 0, 0, 0}, false, ZERO_ADJUST_NONE, 'i', true},
    {"no events", {0, 9, 0, 8}, false, ZERO_ADJUST_EACH, 'v'},
    {"no events, dropped", {0, 9, 0, 8}, true, ZERO_ADJUST_EACH, 'd'},
    {"events only, dropped", {9, 0, 8, 0}, true, ZERO_ADJUST_ALL, 'd'},
    {"no events, negative", {0, -9, 0, 8}, true, ZERO_ADJUST_EACH, 'i'},
    {"events cancel", {-1, 9, 1, 8}, true, ZERO_ADJUST_EACH, 'i'},
    {"zero in both arms, corrected", {0, 9, 8, 0}, true, ZERO_ADJUST_EACH, 'v'},
    {"zero in both arms", {0, 9, 8, 0}, false, ZERO_ADJUST_NONE, 'i', true},
    {"zero in both arms, dropping", {0, 9, 8, 0}, true, ZERO_ADJUST_NONE, 'i'},
    {"zero in both arms before dropping", {0, 9, 0, 8}, true, ZERO_ADJUST_NONE, 'i'},
    {"zero in both arms, missing cell", {0, 9, 0, missing}, false, ZERO_ADJUST_NONE, 'm'},
    {"zero in one arm", {0, 9, 3, 8}, false, ZERO_ADJUST_NONE, 'i'}, // no odds ratio
    {"short record", {1, 2, 3}, false, ZERO_ADJUST_EACH, 'm'},
    {"empty arm", {0, 0, 3, 8}, false, ZERO_ADJUST_EACH, 'v'},
    {"empty arm, no correction", {0, 0, 3, 8}, false, ZERO_ADJUST_NONE, 'i'},
    {"correction by nothing", {0, 9, 3, 8}, false, ZERO_ADJUST_EACH, 'i', false, 0.0},
};

/// No study of these has an odds ratio but the first and last.
const Rows withoutOddsRatio = {
    {4, 119, 11, 128}, {0, 20, 3, 17}, {1, 2, missing, 4}, {5, 5, 0, 10}, {6, 300, 29, 274}};

} // namespace

TEST(MABinModel, EffectSizesMeetTheReferenceFigures)
{
    for (const char* const name : dataSets) {
        const DataSet data(name);
        const nlohmann::json reference = LoadReference(name).at("tables");
        for (int measure = BIN_ODDS_RATIO; measure <= BIN_RISK_DIFFERENCE; ++measure) {
            for (int adjustment = ZERO_ADJUST_EACH; adjustment <= ZERO_ADJUST_NONE; ++adjustment) {
                const std::string key = std::string(measures[measure]) + "_" + adjustments[adjustment];
                SCOPED_TRACE(std::string(name) + " " + key);
                const bool hasZeroCells = reference.contains("OR_none");
                if (!hasZeroCells && adjustment != ZERO_ADJUST_EACH)
                    continue;
                const MAModelSettings settings = SettingsFor(data, measure, adjustment);
                const FinishedRun<MABinModel> run(settings, data.rows);
                EXPECT_TRUE(run.status.IsOK());
                ExpectStudies(run.model, reference.at(key));
            }
        }
    }
}

TEST(MABinModel, InverseVariancePoolingMeetsTheReferenceFigures)
{
    for (const char* const name : dataSets) {
        const DataSet data(name);
        for (int measure = BIN_ODDS_RATIO; measure <= BIN_RISK_DIFFERENCE; ++measure) {
            const std::string key = std::string(measures[measure]) + "_only0";
            SCOPED_TRACE(std::string(name) + " " + key);
            ExpectPooled<MABinModel>(SettingsFor(data, measure, ZERO_ADJUST_EACH), data.rows,
                                     LoadReference(name).at("tables").at(key).at("pooled"));
        }
    }
}

TEST(MABinModel, BinaryPoolingMeetsTheReferenceFigures)
{
    const char* const keys[] = {"MH_OR", "PETO", "MH_RR", "MH_RD"};
    for (const char* const name : dataSets) {
        const DataSet data(name);
        for (int measure = BIN_ODDS_RATIO; measure <= BIN_RISK_DIFFERENCE; ++measure) {
            SCOPED_TRACE(std::string(name) + " " + keys[measure]);
            const nlohmann::json figures = LoadReference(name).at("tables").at(keys[measure]);
            const MAModelSettings settings = MantelHaenszel(SettingsFor(data, measure, ZERO_ADJUST_EACH));
            const FinishedRun<MABinModel> run(settings, data.rows);
            EXPECT_TRUE(run.status.IsOK());
            ExpectEstimate(run.model, figures.at("estimate_test_scale"), figures.at("se_test_scale"),
                           figures.at("z"), figures.at("p"), figures.at("ci_lower"), figures.at("ci_upper"),
                           closedFormTolerance);
            ExpectHeterogeneity(run.model, figures);
            if (figures.at("exp").is_null()) {
                EXPECT_TRUE(run.model.GetEstExpEffectSize().empty());
                continue;
            }
            const nlohmann::json& exponentials = figures.at("exp");
            EXPECT_TRUE(Close(run.model.GetEstExpEffectSize(), {exponentials.at(0)}, closedFormTolerance));
            EXPECT_TRUE(Close(run.model.GetEstExpCILower(), {exponentials.at(1)}, closedFormTolerance));
            EXPECT_TRUE(Close(run.model.GetEstExpCIUpper(), {exponentials.at(2)}, closedFormTolerance));
        }
    }
}

TEST(MABinModel, ClassificationOfRecords)
{
    for (const Classification& row : classifications) {
        SCOPED_TRACE(row.name);
        MAModelSettings settings = TableSettings();
        settings.SetDropBinZero(row.drops);
        settings.SetBinZeroAdjType(row.adjustment);
        settings.SetZeroCountDelta(row.constant);
        const FinishedRun<MABinModel> run(settings, {row.table, row.table});
        EXPECT_TRUE(run.status.IsOK());
        EXPECT_EQ(run.model.GetEffectSize().size(), row.expected == 'v' ? 2U : 0U);
        EXPECT_EQ(run.model.GetNMissing(), row.expected == 'm' ? 2 : 0);
        EXPECT_EQ(run.model.GetNInvalid(), row.expected == 'i' ? 2 : 0);
        EXPECT_EQ(run.model.GetNDropped(), row.expected == 'd' ? 2 : 0);
        const std::vector<int> warnings = run.WarningCodes();
        EXPECT_EQ(std::count(warnings.begin(), warnings.end(), MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS),
                  row.warns ? 1 : 0);
    }
}

TEST(MABinModel, RequiredVariables)
{
    using S = MAModelSettings;
    for (const auto setIndex : {&S::SetTreatmentSuccessIndex, &S::SetTreatmentFailureIndex,
                                &S::SetControlSuccessIndex, &S::SetControlFailureIndex}) {
        MAModelSettings settings = TableSettings();
        (settings.*setIndex)(-1);
        const FinishedRun<MABinModel> run(settings, {{1, 2, 3, 4}});
        EXPECT_EQ(run.status, KXStatus(MAStatusCode::INPUT_NOT_GIVEN));
        EXPECT_TRUE(run.model.GetNonMissingStudyID().empty());
        (settings.*setIndex)(9); // beyond the record: every cell is missing
        EXPECT_EQ(FinishedRun<MABinModel>(settings, {{1, 2, 3, 4}}).model.GetNMissing(), 1);
    }
}

/// The removal of a study takes its entry out of everything that is kept by study, the counts included.
TEST(MABinModel, RemovedStudiesLeaveNoTrace)
{
    MAModelSettings settings = MantelHaenszel(TableSettings());
    settings.SetBinZeroAdjType(ZERO_ADJUST_NONE);
    settings.SetContrastCoefIndex({0, 1});
    const FinishedRun<MABinModel> run(settings, withoutOddsRatio);
    const FinishedRun<MABinModel> kept(settings, {withoutOddsRatio[0], withoutOddsRatio[4]});
    const MABinModel& model = run.model;
    EXPECT_TRUE(run.status.IsOK());
    EXPECT_EQ(model.GetNonMissingStudyID(), (std::vector<int>{0, 4}));
    EXPECT_EQ(model.GetSubGroupStudyID(), (std::vector<std::vector<int>>{{0, 4}}));
    EXPECT_EQ(model.GetSampSize(), (std::vector<double>{262, 609}));
    EXPECT_EQ(model.GetGroupN(), std::vector<int>{2});
    EXPECT_EQ(model.GetNMissing(), 1);
    EXPECT_EQ(model.GetNInvalid(), 2);
    using M = MABinModel;
    using Column = std::vector<double> (M::*)() const;
    for (const Column column : {Column(&M::GetZVal), Column(&M::GetExpCIUpper), Column(&M::GetWeight),
                                Column(&M::GetSig), Column(&M::GetExpVariance)})
        EXPECT_TRUE(Same((model.*column)(), (kept.model.*column)()));
    const std::vector<int> warnings = run.WarningCodes();
    EXPECT_EQ(warnings,
              (std::vector<int>{MAStatusCode::STUDIES_REMOVED, MAStatusCode::CONTRAST_COUNT_MISMATCH,
                                MAStatusCode::FIXED_MODEL_WITH_CONTRAST, MAStatusCode::TWO_STUDIES}));
}

/// The studies' own effects and the pooled one rest on the same counts: corrected once, by the constant of
/// the settings.
TEST(MABinModel, CountsAreCorrectedOnceWithTheGivenConstant)
{
    const Rows rows = {{4, 0, 11, 7}, {6, 30, 29, 27}};
    for (const ZEROADJTYPE type : {ZERO_ADJUST_EACH, ZERO_ADJUST_ALL_IF_ANY, ZERO_ADJUST_ALL}) {
        SCOPED_TRACE(type);
        MAModelSettings settings = MantelHaenszel(TableSettings());
        settings.SetBinZeroAdjType(type);
        settings.SetZeroCountDelta(0.25);
        const FinishedRun<MABinModel> run(settings, rows);
        const double d2 = type == ZERO_ADJUST_EACH ? 0.0 : 0.25;
        const double first[] = {4.25, 0.25, 11.25, 7.25};
        const double second[] = {6 + d2, 30 + d2, 29 + d2, 27 + d2};
        const double n = 92 + 4 * d2;
        const double weights[] = {first[1] * first[2] / 23, second[1] * second[2] / n};
        const double estimate =
            std::log((first[0] * first[3] / 23 + second[0] * second[3] / n) / (weights[0] + weights[1]));
        EXPECT_TRUE(Close(run.model.GetEffectSize().at(0),
                          std::log(first[0] * first[3] / (first[1] * first[2])), 1e-14));
        EXPECT_TRUE(Close(run.model.GetEstEffectSize().at(0), estimate, 1e-14));
        EXPECT_TRUE(Close(run.model.GetWeight(), {weights[0], weights[1]}, 1e-15));
        EXPECT_EQ(run.model.GetSampSize(), (std::vector<double>{22, 92})); // as read
    }
}

/// The null value is on the analysis scale under inverse-variance pooling, on the natural one under
/// Mantel-Haenszel. The ratio scale is that of the results, not of the counts.
TEST(MABinModel, NullValueConfidenceLevelAndRatioScale)
{
    const DataSet data("bcg_vaccine");
    MAModelSettings settings = SettingsFor(data, BIN_ODDS_RATIO, ZERO_ADJUST_EACH);
    settings.SetModelType(MODEL_FIXED);
    settings.SetNullHypothesis(0.5);
    settings.SetCILevel(0.9);
    for (const bool mantelHaenszel : {false, true}) {
        if (mantelHaenszel)
            settings = MantelHaenszel(settings);
        const FinishedRun<MABinModel> run(settings, data.rows);
        const MABinModel& model = run.model;
        const double estimate = model.GetEstEffectSize().at(0);
        const double stdError = model.GetEstStdError().at(0);
        const double null = mantelHaenszel ? std::log(0.5) : 0.5;
        const double quantile = 1.6448536269514722;
        EXPECT_DOUBLE_EQ(model.GetEstZVal().at(0), (estimate - null) / stdError);
        EXPECT_TRUE(Close(model.GetEstCIUpper().at(0), estimate + quantile * stdError, 1e-15, 1.0));
        EXPECT_DOUBLE_EQ(model.GetEstExpCIUpper().at(0), std::exp(model.GetEstCIUpper()[0]));
        EXPECT_DOUBLE_EQ(model.GetEstExpEffectSize().at(0), std::exp(estimate));
        EXPECT_TRUE(Same(model.GetExpPILower(), {missing}));

        const double studyUpper = model.GetEffectSize().at(0) + quantile * model.GetStdError().at(0);
        EXPECT_TRUE(Close(model.GetCIUpper().at(0), studyUpper, 1e-15, 1.0));
        EXPECT_DOUBLE_EQ(model.GetExpCIUpper().at(0), std::exp(model.GetCIUpper()[0]));
        EXPECT_DOUBLE_EQ(model.GetExpVariance().at(0), std::exp(model.GetVariance()[0]));
    }
    settings = SettingsFor(data, BIN_RISK_DIFFERENCE, ZERO_ADJUST_EACH);
    const FinishedRun<MABinModel> difference(settings, data.rows);
    EXPECT_TRUE(difference.model.GetExpEffectSize().empty());
    EXPECT_TRUE(difference.model.GetEstExpEffectSize().empty());
    EXPECT_DOUBLE_EQ(difference.model.GetExpPIUpper().at(0), std::exp(difference.model.GetPIUpper()[0]));
}

TEST(MABinModel, TableVectorsOfUnequalLength)
{
    const MAModelSettings settings = TableSettings();
    MABinModel model(settings);
    const std::vector<double> two = {1, 2};
    const std::vector<double> three = {1, 2, 3};
    const KXStatus refused(MAStatusCode::LENGTH_MISMATCH);
    EXPECT_EQ(model.BuildBinModel(two, two, two, three), refused);
    EXPECT_EQ(model.BuildBinModel({}, two, two, two), refused);
    EXPECT_EQ(model.BuildBinOnlyTestModel(three, two, two, two), refused);
    EXPECT_TRUE(model.GetEstEffectSize().empty());
    EXPECT_TRUE(model.GetHomoTestChisquareQ().empty());

    EXPECT_TRUE(model.BuildBinModel(two, two, two, two).IsOK()); // the error was of those vectors
    EXPECT_TRUE(model.BuildBinOnlyTestModel(two, two, two, two).IsOK());
    EXPECT_EQ(model.GetEstExpEffectSize(), std::vector<double>{1.0});
    EXPECT_EQ(model.GetHomoTestChisquareQ().size(), 2U);
}
