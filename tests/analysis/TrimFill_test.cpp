#include "support/PooledFigures.h"
#include "support/Poolings.h"
#include "support/Published.h"
#include "support/SmallStudyRun.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <random>
#include <type_traits>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

MAModelSettings TrimFillSettings(MAModelSettings settings, MODELTYPE model, TAU2ESTIMATOR estimator = TAU2_DL)
{
    settings.SetIsTRIMFILL(true);
    settings.SetModelType(model);
    settings.SetTFModelType(model);
    settings.SetEstTauType(estimator);
    settings.SetTFEstTauType(estimator);
    return settings;
}

/// Deviations from a weighted mean of 0 whose magnitudes are their ranks. Positive ones are 2, 5, 6, 8, 9 and
/// 10, with sum 40, and of the negative ones -7 is the smallest.
const Rows skewed = {{-7, 0.3}, {10, 0.8}, {-1, 0.3}, {5, 0.8}, {8, 0.8},
                     {-4, 0.3}, {2, 0.8},  {9, 0.8},  {6, 0.8}, {-3, 0.3}};

/// Effect, variance, group: the small studies have the large effects.
const Rows leaning = {{0.05, 0.005, 0}, {0.2, 0.01, 1},  {0.35, 0.02, 0}, {0.55, 0.045, 1},
                      {1, 0.05, 0},     {1.15, 0.08, 1}, {1.4, 0.115, 0}, {1.7, 0.13, 1}};

/// Effects that lean to one side: every second one is its magnitude.
Rows LeaningStudies(unsigned seed)
{
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> stdError(0.1, 0.9);
    Rows rows(8 + seed % 9);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double error = stdError(generator);
        const double effect = error * normal(generator);
        rows[i] = {0.2 + (i % 2 == 0 ? 2 * std::abs(effect) : effect), error * error};
    }
    return rows;
}

Rows Mirrored(Rows rows)
{
    for (Row& row : rows)
        row[0] = -row[0];
    return rows;
}

Row Sorted(Row values)
{
    std::sort(values.begin(), values.end());
    return values;
}

using ContRun = FinishedRun<MAContModel>;

template <class Run>
int Warnings(const Run& run, int code)
{
    const std::vector<int> codes = run.WarningCodes();
    return static_cast<int>(std::count(codes.begin(), codes.end(), code));
}

void ExpectFigures(const MABaseModel& model, const nlohmann::json& figures, double tolerance)
{
    const nlohmann::json& filled = figures.at("filled"); // one is a number
    const Row imputed = filled.is_array() ? filled.get<Row>() : Row{filled};
    const double stdError = figures.at("se");
    EXPECT_EQ(model.GetTFImputedN0(), figures.at("k0"));
    EXPECT_TRUE(Close(Sorted(model.GetTFImputedEffectSize()), Sorted(imputed), tolerance));
    EXPECT_TRUE(Close(model.GetOverallTFEffectSize(), figures.at("estimate"), tolerance, stdError));
    EXPECT_TRUE(Close(model.GetOverallTFStdError(), stdError, tolerance));
    EXPECT_TRUE(Close(model.GetOverallTFCILower(), figures.at("ci_lower"), tolerance, stdError));
    EXPECT_TRUE(Close(model.GetOverallTFCIUpper(), figures.at("ci_upper"), tolerance, stdError));
}

struct Example
{
    const char* name;
    Rows rows;
    TRIMFMETHOD method;
    int maxIter;
    Row imputed;
};

/// The filled model is that of a run on the observed and the imputed studies; all else is that of a run
/// without trim-and-fill, and so are models that are built afterwards.
void ExpectOverallModelInPlace(MODELTYPE model, int group, const Rows& rows)
{
    MAModelSettings settings = TrimFillSettings(EffectSettings(), model, TAU2_REML);
    settings.SetOutcomesType(OUTCOME_BINARY);
    settings.SetKnapHartAdjustType(KNAPP_HARTUNG_ADJUSTED);
    settings.SetTFModelType(model == MODEL_FIXED ? MODEL_RANDOM : MODEL_FIXED);
    settings.SetTFEstTauType(TAU2_HE);
    settings.SetTrimFillSide(TRIM_SIDE_LARGEST);
    settings.SetSubGroupIndex(group);
    settings.SetFunnelYType(FUNNEL_VARIANCE);
    MAModelSettings without = settings;
    without.SetIsTRIMFILL(false);
    BinRun run(settings, rows);
    BinRun plain(without, rows);
    EXPECT_EQ(run.model.GetTFImputedN0() > 0, rows[0][0] > 0);
    ASSERT_EQ(run.model.GetEstEffectSize().size(), group == -1 ? 1U : 3U);
    ASSERT_EQ(run.model.GetTau2Var().size(), plain.model.GetTau2Var().size());
    for (std::size_t i = 0; i < run.model.GetEstEffectSize().size(); ++i) {
        EXPECT_TRUE(SameEntries(estimateColumns, run.model, i, plain.model, i));
        EXPECT_TRUE(SameEntries(heterogeneityColumns, run.model, i, plain.model, i));
        EXPECT_TRUE(SameEntries(ratioColumns, run.model, i, plain.model, i));
    }
    EXPECT_EQ(run.model.GetWeight(), plain.model.GetWeight());
    EXPECT_EQ(run.model.GetGroupN(), plain.model.GetGroupN());

    // The rows ascend: the last ones are trimmed, and mirrored about the trimming model of the others.
    MAModelSettings trimming = without;
    trimming.SetModelType(settings.GetTFModelType());
    trimming.SetEstTauType(TAU2_HE);
    trimming.SetSubGroupIndex(-1);
    const BinRun trimmed(trimming, Rows(rows.begin(), rows.end() - run.model.GetTFImputedN0()));
    const Row imputed = run.model.GetTFImputedEffectSize();
    Rows filled = rows;
    for (std::size_t i = 0; i < imputed.size(); ++i) {
        EXPECT_EQ(imputed[i], 2 * trimmed.model.GetEstEffectSize()[0] - rows[rows.size() - 1 - i][0]);
        filled.push_back({imputed[i], run.model.GetFunnelY().back()[i], 0});
    }
    without.SetSubGroupIndex(-1);
    const BinModel whole = BinRun(without, filled).model;
    EXPECT_EQ(run.model.GetOverallTFEffectSize(), whole.GetEstEffectSize()[0]);
    EXPECT_EQ(run.model.GetOverallTFStdError(), whole.GetEstStdError()[0]);
    EXPECT_EQ(run.model.GetOverallTFZVal(), whole.GetEstZVal()[0]);
    EXPECT_EQ(run.model.GetOverallTFSig(), whole.GetEstSig()[0]);
    EXPECT_EQ(run.model.GetOverallTFCILower(), whole.GetEstCILower()[0]);
    EXPECT_EQ(run.model.GetOverallTFExpEffectSize(), whole.GetEstExpEffectSize()[0]);
    EXPECT_EQ(run.model.GetOverallTFExpCILower(), whole.GetEstExpCILower()[0]);
    EXPECT_EQ(run.model.GetOverallTFExpCIUpper(), whole.GetEstExpCIUpper()[0]);

    run.model.BuildModel({1, 2, 4}, {1, 2, 4});
    plain.model.BuildModel({1, 2, 4}, {1, 2, 4});
    EXPECT_EQ(run.model.GetEstCIUpper().back(), plain.model.GetEstCIUpper().back());
}

} // namespace

/// The key of a figure says the method of pooling, the estimator, and where the imputed studies lie.
TEST(TrimFill, MeetsTheReferenceFigures)
{
    int compared = 0;
    for (const char* const name : biasDataSets) {
        const Published published(name);
        for (const auto& [key, figures] : published.figures.at("bias").items()) {
            const auto has = [&k = key](const char* part) { return k.find(part) != std::string::npos; };
            if (!has("trimfill"))
                continue;
            SCOPED_TRACE(std::string(name) + " " + key);
            ++compared;
            MAModelSettings settings =
                TrimFillSettings(published.settings, has("_FE_") ? MODEL_FIXED : MODEL_RANDOM,
                                 has("_REML_") ? TAU2_REML : TAU2_DL);
            settings.SetTrimFillMethod(has("_L0_") ? TRIM_LINEAR : has("_R0_") ? TRIM_RUN : TRIM_QUADRATIC);
            settings.SetTrimFillSide(has("_left") ? TRIM_SIDE_LARGEST : TRIM_SIDE_SMALLEST);
            published.WithDriver([&, &expected = figures](auto* driver) {
                const FinishedRun<std::remove_pointer_t<decltype(driver)>> run(settings, published.data.rows);
                EXPECT_TRUE(run.status.IsOK());
                ExpectFigures(run.model, expected, has("_REML_") ? iterativeTolerance : closedFormTolerance);
            });
        }
    }
    EXPECT_EQ(compared, 5 * 18 - 3); // there are none where the root of the quadratic estimator is no number
}

/// On the side of the largest effects. After one pass the numbers are those of the deviations from the mean
/// of all studies.
TEST(TrimFill, Examples)
{
    const Row equal = {0.1, 0.3};
    const Rows equalEffects = {equal, equal, {0.1, 0.5}}; // their mean rounds to a smaller number
    const Rows strongly = {{-1, 0.2}, {2, 1}, {3, 1}};
    const Example examples[] = {
        {"(4 * 40 - 110) / 19 = 2.63", skewed, TRIM_LINEAR, 1, {-10, -9, -8}},
        {"10 - 7 - 1", skewed, TRIM_RUN, 1, {-10, -9}},
        {"9.5 - sqrt(40.25) = 3.16", skewed, TRIM_QUADRATIC, 1, {-10, -9, -8}},
        {"quadratic as any other", skewed, static_cast<TRIMFMETHOD>(9), 1, {-10, -9, -8}},
        {"(4 * 5 - 12) / 5 = 1.6", strongly, TRIM_LINEAR, 1, {-3, -2}},
        {"3 - 1 - 1", strongly, TRIM_RUN, 1, {-3}},
        {"the root of 2 * (9 - 10) + 0.25", strongly, TRIM_QUADRATIC, 100, {}},
        {"equal effects", equalEffects, TRIM_LINEAR, 100, {}},
        {"equal studies", Rows(6, equal), TRIM_LINEAR, 100, {}},
        {"equal effects, quadratic", equalEffects, TRIM_QUADRATIC, 100, {}},
        {"equal effects: 3 - 1 - 1", equalEffects, TRIM_RUN, 100, {0.1}},
        {"(4 * 2 - 6) / 3, then 3 about 1", {{1, 1}, {3, 2}}, TRIM_LINEAR, 100, {-1}},
        {"1.5 - sqrt(0.25)", {{1, 1}, {3, 2}}, TRIM_QUADRATIC, 100, {-1}},
        {"two studies, run", {{1, 1}, {3, 2}}, TRIM_RUN, 100, {}},
        {"symmetric", {{-2, 1}, {0, 1}, {2, 1}}, TRIM_LINEAR, 1, {}},
        {"no iteration", skewed, TRIM_LINEAR, 0, {}},
        {"negative limit", skewed, TRIM_LINEAR, -1, {}},
    };
    for (const Example& example : examples) {
        SCOPED_TRACE(example.name);
        MAModelSettings settings = TrimFillSettings(EffectSettings(), MODEL_FIXED);
        settings.SetTrimFillMethod(example.method);
        settings.SetTrimFillSide(TRIM_SIDE_LARGEST);
        settings.SetMaxIter(example.maxIter);
        const ContRun run(settings, example.rows);
        const Row imputed = run.model.GetTFImputedEffectSize();
        EXPECT_TRUE(run.status.IsOK());
        EXPECT_EQ(run.model.GetTFImputedN0(), static_cast<int>(imputed.size()));
        ASSERT_EQ(imputed.size(), example.imputed.size());
        for (std::size_t i = 0; i < imputed.size(); ++i)
            EXPECT_TRUE(Close(imputed[i], example.imputed[i], 1e-15, 10));
        EXPECT_EQ(Warnings(run, MAStatusCode::TRIM_FILL_NOT_CONVERGED),
                  example.maxIter == 1 && !imputed.empty() ? 1 : 0);
    }
}

/// Mirrored effects have the mirrored result on the other side, to the last digit, be the side found by the
/// covariance or by the slope of the small-study test.
TEST(TrimFill, MirroredEffects)
{
    int imputed = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const Rows rows = LeaningStudies(seed);
        MAModelSettings settings =
            TrimFillSettings(EffectSettings(), seed % 2 == 0 ? MODEL_FIXED : MODEL_RANDOM);
        settings.SetTrimFillMethod(static_cast<TRIMFMETHOD>(seed % 3));
        const ContRun run(settings, rows);
        const ContRun mirrored(settings, Mirrored(rows));
        EXPECT_EQ(run.model.GetTRimFillSide() + mirrored.model.GetTRimFillSide(), 3);
        EXPECT_EQ(run.model.GetTFImputedN0(), mirrored.model.GetTFImputedN0());
        for (std::size_t i = 0; i < run.model.GetTFImputedEffectSize().size(); ++i)
            EXPECT_EQ(run.model.GetTFImputedEffectSize()[i], -mirrored.model.GetTFImputedEffectSize().at(i));
        EXPECT_EQ(run.model.GetTFImputedStdError(), mirrored.model.GetTFImputedStdError());
        EXPECT_EQ(run.model.GetOverallTFCILower(), -mirrored.model.GetOverallTFCIUpper());
        imputed += run.model.GetTFImputedN0();

        const SmallStudyRun<MAContModel> tested(settings, rows);
        const SmallStudyRun<MAContModel> testedMirrored(settings, Mirrored(rows));
        EXPECT_EQ(tested.model.GetTRimFillSide(), tested.model.GetRegBasedTestCoef() > 0 ? 1 : 2);
        EXPECT_EQ(tested.model.GetTRimFillSide() + testedMirrored.model.GetTRimFillSide(), 3);
    }
    EXPECT_GT(imputed, 60); // there was something to compare
}

/// Without a slope and without a covariance, as of studies of one size, the smallest effects are trimmed:
/// whatever the rounding of the sums.
TEST(TrimFill, SideOfStudiesOfOneSize)
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Rows rows = LeaningStudies(seed);
        for (Row& row : rows)
            row[1] = 0.01 * seed;
        const SmallStudyRun<MAContModel> run(EffectSettings(), rows);
        EXPECT_EQ(run.model.GetRegBasedTestCoef(), missing); // collinear with the intercept
        EXPECT_EQ(run.model.GetTRimFillSide(), TRIM_SIDE_SMALLEST) << "seed " << seed;
    }
}

TEST(TrimFill, LeavesTheOverallModelInPlace)
{
    for (const MODELTYPE model : {MODEL_FIXED, MODEL_RANDOM}) {
        for (const int group : {-1, 2}) {
            SCOPED_TRACE(testing::Message() << "model " << model << ", group " << group);
            ExpectOverallModelInPlace(model, group, leaning);
            ExpectOverallModelInPlace(model, group, Mirrored(leaning)); // nothing to fill on that side
        }
    }
}

TEST(TrimFill, NotRun)
{
    const MAModelSettings settings = TrimFillSettings(EffectSettings(), MODEL_FIXED);
    EXPECT_EQ(ContRun(settings, {}).status, KXStatus(MAStatusCode::NO_ANALYSED_STUDY));
    const ContRun one(settings, {{1, 1}});
    EXPECT_TRUE(one.status.IsOK());
    EXPECT_EQ(one.model.GetOverallTFEffectSize(), missing);

    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings tables = TrimFillSettings(pooling.Of(TableSettings()), pooling.model);
        const BinRun run(tables, {{12, 88, 20, 80}, {15, 85, 25, 75}, {9, 91, 8, 92}});
        EXPECT_TRUE(run.status.IsOK());
        EXPECT_EQ(Warnings(run, MAStatusCode::TRIM_FILL_NOT_RUN), pooling.IsBinary() ? 1 : 0);
        EXPECT_EQ(run.model.GetOverallTFEffectSize() == missing, pooling.IsBinary());
        EXPECT_EQ(run.model.GetOverallTFExpEffectSize() == missing, pooling.IsBinary());
        EXPECT_EQ(run.model.GetFunnelX().size(), pooling.IsBinary() ? 1U : 2U);
    }
}
