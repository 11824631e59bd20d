#include "support/PooledFigures.h"
#include "support/Poolings.h"

#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const char* const measures[] = {"OR", "PETO", "RR", "RD"};
const char* const adjustments[] = {"only0", "if0all", "all", "none"};
const char* const mantelHaenszelKeys[] = {"MH_OR", "PETO", "MH_RR", "MH_RD"};

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
void ExpectStudies(const BinRun& run, const nlohmann::json& figures)
{
    const MABinModel& model = run.model;
    EXPECT_TRUE(run.status.IsOK());
    std::vector<int> records;
    Row effects;
    Row variances;
    for (std::size_t record = 0; record < figures.at("yi").size(); ++record) {
        const double variance = Number(figures.at("vi")[record]);
        if (!(variance > 0))
            continue;
        records.push_back(static_cast<int>(record));
        effects.push_back(Number(figures.at("yi")[record]));
        variances.push_back(variance);
    }
    EXPECT_EQ(model.GetNonMissingStudyID(), records);
    EXPECT_TRUE(Close(model.GetEffectSize(), effects, studyTolerance, 1e-3)); // of logarithms and risks
    EXPECT_TRUE(Close(model.GetVariance(), variances, studyTolerance));
    EXPECT_EQ(model.GetNInvalid(), static_cast<int>(figures.at("yi").size() - records.size()));
    ExpectStudyTests(model);
}

/// The estimate is on the scale of its test; "exp" has it and its interval on that of ratios.
void ExpectBinaryPooling(const BinRun& run, const nlohmann::json& figures)
{
    EXPECT_TRUE(run.status.IsOK());
    ExpectEstimate(run.model, figures.at("estimate_test_scale"), figures.at("se_test_scale"), figures.at("z"),
                   figures.at("p"), figures.at("ci_lower"), figures.at("ci_upper"), closedFormTolerance);
    ExpectHeterogeneity(run.model, figures);
    Row ratios = run.model.GetEstExpEffectSize();
    for (const Row& bound : {run.model.GetEstExpCILower(), run.model.GetEstExpCIUpper()})
        ratios.insert(ratios.end(), bound.begin(), bound.end());
    const nlohmann::json& expected = figures.at("exp");
    EXPECT_TRUE(Close(ratios, expected.is_null() ? Row() : expected.get<Row>(), closedFormTolerance));
}

struct Classification
{
    const char* name;
    Row table;
    bool drops;
    ZEROADJTYPE adjustment;
    EXCLUSION reason;
    bool warns = false;    ///< of zero cells in both arms
    double constant = 0.5; ///< of the zero-cell correction
};

const Classification classifications[] = {
    {"full", {1, 2, 3, 4}, true, ZERO_ADJUST_NONE, EXCLUSION_NONE},
    {"missing cell", {1, missing, 3, 4}, true, ZERO_ADJUST_EACH, EXCLUSION_MISSING_VALUE},
    {"NaN is missing", {1, 2, notANumber, 4}, false, ZERO_ADJUST_EACH, EXCLUSION_MISSING_VALUE},
    {"negative", {1, 2, -3, 4}, false, ZERO_ADJUST_EACH, EXCLUSION_NEGATIVE_COUNT},
    {"four zeros", {0, 0, 0, 0}, false, ZERO_ADJUST_EACH, EXCLUSION_NO_PERSONS},
    {"four zeros are not dropped", {0, 0, 0, 0}, true, ZERO_ADJUST_EACH, EXCLUSION_NO_PERSONS},
    {"four zeros, no correction", {0, 0, 0, 0}, false, ZERO_ADJUST_NONE, EXCLUSION_NO_PERSONS, true},
    {"no events", {0, 9, 0, 8}, false, ZERO_ADJUST_EACH, EXCLUSION_NONE},
    {"no events, dropped", {0, 9, 0, 8}, true, ZERO_ADJUST_EACH, EXCLUSION_DROPPED},
    {"events only, dropped", {9, 0, 8, 0}, true, ZERO_ADJUST_ALL, EXCLUSION_DROPPED},
    {"events cancel", {-1, 9, 1, 8}, true, ZERO_ADJUST_EACH, EXCLUSION_NEGATIVE_COUNT},
    {"no events, negative", {0, -9, 0, 8}, true, ZERO_ADJUST_EACH, EXCLUSION_NEGATIVE_COUNT},
    {"zero in both arms, corrected", {0, 9, 8, 0}, true, ZERO_ADJUST_EACH, EXCLUSION_NONE},
    {"zero in both arms", {0, 9, 8, 0}, false, ZERO_ADJUST_NONE, EXCLUSION_ZERO_CELLS, true},
    {"zero in both arms, dropping", {0, 9, 8, 0}, true, ZERO_ADJUST_NONE, EXCLUSION_ZERO_CELLS},
    {"zero in both arms before dropping", {0, 9, 0, 8}, true, ZERO_ADJUST_NONE, EXCLUSION_ZERO_CELLS},
    {"zero in both arms, missing cell", {0, 9, 0, missing}, false, ZERO_ADJUST_NONE, EXCLUSION_MISSING_VALUE},
    {"zero in one arm", {0, 9, 3, 8}, false, ZERO_ADJUST_NONE, EXCLUSION_NOT_POOLABLE}, // no odds ratio
    {"short record", {1, 2, 3}, false, ZERO_ADJUST_EACH, EXCLUSION_MISSING_VALUE},
    {"empty arm", {0, 0, 3, 8}, false, ZERO_ADJUST_EACH, EXCLUSION_NONE},
    {"empty arm, no correction", {0, 0, 3, 8}, false, ZERO_ADJUST_NONE, EXCLUSION_NOT_POOLABLE},
    {"correction by nothing", {0, 9, 3, 8}, false, ZERO_ADJUST_EACH, EXCLUSION_NOT_POOLABLE, false, 0.0},
};

} // namespace

TEST(MABinModel, TablesMeetTheReferenceFigures)
{
    int compared = 0;
    for (const char* const name : {"bcg_vaccine", "magnesium", "beta_blockers"}) {
        const DataSet data(name);
        const nlohmann::json reference = LoadReference(name).at("tables");
        for (int measure = BIN_ODDS_RATIO; measure <= BIN_RISK_DIFFERENCE; ++measure) {
            SCOPED_TRACE(std::string(name) + " " + measures[measure]);
            for (int adjustment = ZERO_ADJUST_EACH; adjustment <= ZERO_ADJUST_NONE; ++adjustment) {
                const std::string key = std::string(measures[measure]) + "_" + adjustments[adjustment];
                if (!reference.contains(key))
                    continue; // without zero cells all are the same
                SCOPED_TRACE(adjustments[adjustment]);
                ExpectStudies(BinRun(SettingsFor(data, measure, adjustment), data.rows), reference.at(key));
                ++compared;
            }
            const MAModelSettings settings = SettingsFor(data, measure, ZERO_ADJUST_EACH);
            ExpectPooled<MABinModel>(settings, data.rows,
                                     reference.at(std::string(measures[measure]) + "_only0").at("pooled"));
            ExpectBinaryPooling(BinRun(MantelHaenszel(settings), data.rows),
                                reference.at(mantelHaenszelKeys[measure]));
        }
    }
    EXPECT_EQ(compared, 4 * (1 + 4 + 4));
}

TEST(MABinModel, RecordsAreClassified)
{
    for (const Classification& row : classifications) {
        SCOPED_TRACE(row.name);
        MAModelSettings settings = TableSettings();
        settings.SetDropBinZero(row.drops);
        settings.SetBinZeroAdjType(row.adjustment);
        settings.SetZeroCountDelta(row.constant);
        const BinRun run(settings, {row.table, row.table});
        EXPECT_TRUE(run.status.IsOK());
        ExpectExcluded(run.model, 2, row.reason);
        EXPECT_EQ(run.Warns(MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS), row.warns);
    }
}

/// The studies' own effects and the pooled one rest on the same counts: corrected once, by the constant of
/// the settings. Their sizes are as read.
TEST(MABinModel, CountsAreCorrectedOnceWithTheGivenConstant)
{
    const Rows rows = {{4, 0, 11, 7}, {6, 30, 29, 27}};
    const Row corrected[] = {{4.25, 0.25, 11.25, 7.25}, {6.25, 30.25, 29.25, 27.25}};
    MAModelSettings plain = MantelHaenszel(TableSettings());
    plain.SetBinZeroAdjType(ZERO_ADJUST_NONE);
    for (const ZEROADJTYPE type : {ZERO_ADJUST_EACH, ZERO_ADJUST_ALL_IF_ANY, ZERO_ADJUST_ALL}) {
        MAModelSettings settings = plain;
        settings.SetBinZeroAdjType(type);
        settings.SetZeroCountDelta(0.25);
        const BinRun run(settings, rows);
        const BinRun expected(plain, {corrected[0], type == ZERO_ADJUST_EACH ? rows[1] : corrected[1]});
        const std::vector<std::string> asRead = {"SampSize", "Corrected", "Warnings", "NonInteger"};
        EXPECT_EQ(FirstDifference(ResultsBut(asRead, run.model), ResultsBut(asRead, expected.model)), "")
            << type;
        EXPECT_EQ(run.model.GetSampSize(), (Row{22, 92}));
    }
}

/// The null value is on the analysis scale under inverse-variance pooling, on the natural one under
/// Mantel-Haenszel. The ratio scale is that of the results, not of the counts.
TEST(MABinModel, NullValueConfidenceLevelAndRatioScale)
{
    const DataSet data("bcg_vaccine");
    MAModelSettings inverse = SettingsFor(data, BIN_ODDS_RATIO, ZERO_ADJUST_EACH);
    inverse.SetModelType(MODEL_FIXED);
    inverse.SetNullHypothesis(0.5);
    inverse.SetCILevel(0.9);
    for (const MAModelSettings& settings : {inverse, MantelHaenszel(inverse)}) {
        const BinRun run(settings, data.rows);
        const MABinModel& model = run.model;
        const double estimate = model.GetEstEffectSize().at(0);
        const double stdError = model.GetEstStdError().at(0);
        const double null = settings.GetWeightType() == WEIGHT_BINARY_FIXED ? std::log(0.5) : 0.5;
        constexpr double quantile = 1.6448536269514722;
        EXPECT_DOUBLE_EQ(model.GetEstZVal().at(0), (estimate - null) / stdError);
        EXPECT_TRUE(Close(model.GetEstCIUpper(), {estimate + quantile * stdError}, 4 * machineEpsilon));
        EXPECT_TRUE(Same(model.GetEstExpEffectSize(), Exponentials(model.GetEstEffectSize())));
        EXPECT_TRUE(Same(model.GetEstExpCIUpper(), Exponentials(model.GetEstCIUpper())));
        EXPECT_TRUE(Same(model.GetExpPILower(), {missing}));

        const double studyUpper = model.GetEffectSize().at(0) + quantile * model.GetStdError().at(0);
        EXPECT_TRUE(Close(model.GetCIUpper().at(0), studyUpper, 4 * machineEpsilon, 1.0));
        EXPECT_TRUE(Same(model.GetExpCIUpper(), Exponentials(model.GetCIUpper())));
        EXPECT_TRUE(Same(model.GetExpVariance(), Exponentials(model.GetVariance())));
    }
    const BinRun difference(SettingsFor(data, BIN_RISK_DIFFERENCE, ZERO_ADJUST_EACH), data.rows);
    EXPECT_TRUE(difference.model.GetExpEffectSize().empty());
    EXPECT_TRUE(Same(difference.model.GetExpPIUpper(), Exponentials(difference.model.GetPIUpper())));
}
