// Warnings of settings and data that give numbers which nobody asked for.

#include "support/FinishedRun.h"
#include "support/Regression.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/settings/MASettingsWarnings.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;
using namespace MAStatusCode;
using S = MAModelSettings;
using Codes = std::vector<int>;

namespace {

/// A change of a random-effects run of three tables by REML, and all its warnings.
struct Case
{
    const char* name;
    void (*change)(S&);
    Codes codes;
    std::size_t studyCount = 3;
};

void Fix(S& s)
{
    s.SetModelType(MODEL_FIXED);
}

void PoolTables(S& s)
{
    Fix(s);
    s.SetWeightType(WEIGHT_BINARY_FIXED);
}

const Case cases[] = {
    {"nothing", [](S&) {}, {BINARY_RANDOM_EFFECTS}},
    {"fixed effect", Fix, {BINARY_FIXED_INVERSE_VARIANCE}},
    {"pooled tables", PoolTables, {}},
    {"no study", PoolTables, {CONTRAST_COUNT_MISMATCH, NO_STUDY_IN_RUN}, 0},
    {"one study", PoolTables, {CONTRAST_COUNT_MISMATCH, ONE_STUDY}, 1},
    {"two studies", PoolTables, {CONTRAST_COUNT_MISMATCH, TWO_STUDIES}, 2},
    {"level 1", [](S& s) { s.SetCILevel(1); }, {CONFIDENCE_LEVEL_OUTSIDE, BINARY_RANDOM_EFFECTS}},
    {"level NaN", [](S& s) { s.SetCILevel(notANumber); }, {CONFIDENCE_LEVEL_OUTSIDE, BINARY_RANDOM_EFFECTS}},
    {"ratio below 0", [](S& s) { PoolTables(s), s.SetNullHypothesis(-1); }, {RATIO_NULL_NEGATIVE}},
    {"difference below 0",
     [](S& s) { PoolTables(s), s.SetNullHypothesis(-1), s.SetBinaryEstType(BIN_RISK_DIFFERENCE); },
     {}},
    {"logarithm below 0", [](S& s) { Fix(s), s.SetNullHypothesis(-1); }, {BINARY_FIXED_INVERSE_VARIANCE}},
    {"null of random effects", [](S& s) { s.SetNullHypothesis(2); }, {NULL_IGNORED, BINARY_RANDOM_EFFECTS}},
    {"contrast of random effects",
     [](S& s) { s.SetContrastCoefIndex({0}); },
     {CONTRAST_IGNORED, BINARY_RANDOM_EFFECTS}},
    {"contrast of pooled tables",
     [](S& s) { PoolTables(s), s.SetContrastCoefIndex({0}); },
     {FIXED_MODEL_WITH_CONTRAST}},
    {"no iterations",
     [](S& s) { s.SetMaxIter(0); },
     {NO_ITERATION_ALLOWED, BINARY_RANDOM_EFFECTS, TAU2_DOUBTFUL}},
    {"no iterations while trimming",
     [](S& s) { Fix(s), s.SetIsTRIMFILL(true), s.SetTFEstTauType(TAU2_EB), s.SetMaxIter(0); },
     {NO_ITERATION_ALLOWED, BINARY_FIXED_INVERSE_VARIANCE}},
    {"closed form", [](S& s) { s.SetMaxIter(0), s.SetEstTauType(TAU2_DL); }, {BINARY_RANDOM_EFFECTS}},
    {"search", [](S& s) { s.SetMaxIter(0), s.SetTau2Search(TAU2_SEARCH_GLOBAL); }, {BINARY_RANDOM_EFFECTS}},
    {"other model", [](S& s) { s.SetModelType(static_cast<MODELTYPE>(2)); }, {MODEL_TYPE_UNKNOWN}},
    {"profile likelihood of moments",
     [](S& s) { s.SetEstTauType(TAU2_DL), s.SetTau2Interval(TAU2_INTERVAL_PROFILE_LIKELIHOOD); },
     {TAU2_INTERVAL_UNAVAILABLE, BINARY_RANDOM_EFFECTS}},
    {"common tau² without groups",
     [](S& s) { s.SetCommonTau2(true); },
     {COMMON_TAU2_IGNORED, BINARY_RANDOM_EFFECTS}},
    {"profile likelihood",
     [](S& s) { s.SetTau2Interval(TAU2_INTERVAL_PROFILE_LIKELIHOOD); },
     {BINARY_RANDOM_EFFECTS}},
};

} // namespace

TEST(MASettingsWarnings, OfRunsAreThoseOfTheirSettingsAndStudyCount)
{
    Rows tables = {{12, 88, 20, 80}, {15, 85, 25, 75}, {9, 91, 8, 92}};
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        S settings = TableSettings();
        settings.SetInputContrastCoef(Row(3));
        one.change(settings);
        const FinishedRun<MABinModel> run(settings, {tables.begin(), tables.begin() + one.studyCount});
        EXPECT_FALSE(run.status.IsError());
        EXPECT_EQ(run.WarningCodes(), one.codes);
    }
}

TEST(MASettingsWarnings, OfRegressionsAreThoseOfTheirSettings)
{
    MARegSettings settings = RegressionOn({2});
    settings.SetEstTauType("REML");
    settings.SetMaxIterations(0);
    settings.SetConfidenceLevel(95);
    const Rows studies = RandomStudies(1, 8, 1);
    EXPECT_EQ(FERegression(settings, studies).WarningCodes(), Codes{CONFIDENCE_LEVEL_OUTSIDE});
    EXPECT_EQ(RERegression(settings, studies).WarningCodes(),
              (Codes{CONFIDENCE_LEVEL_OUTSIDE, NO_ITERATION_ALLOWED, TAU2_DOUBTFUL}));
    settings.SetEstTauType("DL");
    settings.SetConfidenceLevel(0.95);
    settings.SetTau2Interval(TAU2_INTERVAL_PROFILE_LIKELIHOOD);
    EXPECT_EQ(RERegression(settings, studies).WarningCodes(), Codes{TAU2_INTERVAL_UNAVAILABLE});
}
