// Warnings of runs and regressions whose settings and data give numbers that nobody asked for.

#include "support/FinishedRun.h"
#include "support/Regression.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;
using namespace MAStatusCode;

namespace {

const Rows tables = {{12, 88, 20, 80}, {15, 85, 25, 75}, {9, 91, 8, 92}};

struct Case
{
    const char* name;
    int code;
    bool isExpected;
    void (*change)(MAModelSettings&);
};

void PoolTables(MAModelSettings& settings)
{
    settings.SetModelType(MODEL_FIXED);
    settings.SetWeightType(WEIGHT_BINARY_FIXED);
}

void TrimByIteration(MAModelSettings& settings)
{
    settings.SetModelType(MODEL_FIXED);
    settings.SetIsTRIMFILL(true);
    settings.SetTFEstTauType(TAU2_EB);
    settings.SetMaxIter(0);
}

using S = MAModelSettings;

const Case cases[] = {
    {"level 1", CONFIDENCE_LEVEL_OUTSIDE, true, [](S& s) { s.SetCILevel(1); }},
    {"level 0", CONFIDENCE_LEVEL_OUTSIDE, true, [](S& s) { s.SetCILevel(0); }},
    {"level in percent", CONFIDENCE_LEVEL_OUTSIDE, true, [](S& s) { s.SetCILevel(95); }},
    {"level NaN", CONFIDENCE_LEVEL_OUTSIDE, true, [](S& s) { s.SetCILevel(notANumber); }},
    {"level inside", CONFIDENCE_LEVEL_OUTSIDE, false, [](S& s) { s.SetCILevel(0.999); }},
    {"negative ratio", RATIO_NULL_NEGATIVE, true, [](S& s) { PoolTables(s), s.SetNullHypothesis(-1); }},
    {"ratio 0 stands for 1", RATIO_NULL_NEGATIVE, false, [](S& s) { PoolTables(s); }},
    {"negative difference", RATIO_NULL_NEGATIVE, false,
     [](S& s) { PoolTables(s), s.SetNullHypothesis(-1), s.SetBinaryEstType(BIN_RISK_DIFFERENCE); }},
    {"negative logarithm", RATIO_NULL_NEGATIVE, false,
     [](S& s) { s.SetModelType(MODEL_FIXED), s.SetNullHypothesis(-1); }},
    {"contrast of random effects", CONTRAST_IGNORED, true, [](S& s) { s.SetContrastCoefIndex({0}); }},
    {"null of random effects", NULL_IGNORED, true, [](S& s) { s.SetNullHypothesis(2); }},
    {"null of a fixed effect", NULL_IGNORED, false,
     [](S& s) { s.SetModelType(MODEL_FIXED), s.SetNullHypothesis(2); }},
    {"no events anywhere", NO_STUDY_IN_RUN, true, [](S& s) { s.SetTreatmentFailureIndex(7); }},
    {"some studies", NO_STUDY_IN_RUN, false, [](S&) {}},
    {"no iterations", NO_ITERATION_ALLOWED, true, [](S& s) { s.SetMaxIter(0); }},
    {"no iterations while trimming", NO_ITERATION_ALLOWED, true, TrimByIteration},
    {"one iteration", NO_ITERATION_ALLOWED, false, [](S& s) { s.SetMaxIter(1); }},
    {"closed form", NO_ITERATION_ALLOWED, false, [](S& s) { s.SetMaxIter(0), s.SetEstTauType(TAU2_DL); }},
    {"global search", NO_ITERATION_ALLOWED, false,
     [](S& s) { s.SetMaxIter(0), s.SetTau2Search(TAU2_SEARCH_GLOBAL); }},
    {"other model", MODEL_TYPE_UNKNOWN, true, [](S& s) { s.SetModelType(static_cast<MODELTYPE>(2)); }},
    {"known model", MODEL_TYPE_UNKNOWN, false, [](S&) {}},
    {"profile likelihood of moments", TAU2_INTERVAL_UNAVAILABLE, true,
     [](S& s) { s.SetEstTauType(TAU2_DL), s.SetTau2Interval(TAU2_INTERVAL_PROFILE_LIKELIHOOD); }},
    {"profile likelihood of REML", TAU2_INTERVAL_UNAVAILABLE, false,
     [](S& s) { s.SetTau2Interval(TAU2_INTERVAL_PROFILE_LIKELIHOOD); }},
};

} // namespace

TEST(SettingsWarnings, OfRuns)
{
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        MAModelSettings settings = TableSettings();
        one.change(settings);
        const FinishedRun<MABinModel> run(settings, tables);
        EXPECT_FALSE(run.status.IsError());
        EXPECT_EQ(run.Warns(one.code), one.isExpected);
    }
}

TEST(SettingsWarnings, OfRegressions)
{
    MARegSettings settings = RegressionOn({2});
    settings.SetEstTauType("REML");
    settings.SetMaxIterations(0);
    settings.SetConfidenceLevel(95);
    const Rows studies = RandomStudies(1, 8, 1);
    EXPECT_EQ(FERegression(settings, studies).WarningCodes(), std::vector<int>{CONFIDENCE_LEVEL_OUTSIDE});
    EXPECT_EQ(RERegression(settings, studies).WarningCodes(),
              (std::vector<int>{CONFIDENCE_LEVEL_OUTSIDE, NO_ITERATION_ALLOWED, TAU2_DOUBTFUL}));
    settings.SetEstTauType("DL");
    settings.SetConfidenceLevel(0.95);
    EXPECT_EQ(RERegression(settings, studies).WarningCodes(), std::vector<int>());
    settings.SetTau2Interval(TAU2_INTERVAL_PROFILE_LIKELIHOOD);
    EXPECT_EQ(RERegression(settings, studies).WarningCodes(), std::vector<int>{TAU2_INTERVAL_UNAVAILABLE});
}
