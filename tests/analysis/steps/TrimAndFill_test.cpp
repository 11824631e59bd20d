#include "support/PooledFigures.h"
#include "support/Poolings.h"
#include "support/Published.h"
#include "support/Regression.h"

#include "meta_analysis/settings/MAStatusCode.h"

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

/// In the order of `estimateColumns`.
Row FilledEstimate(const BinModel& model)
{
    return {
        model.GetOverallTFEffectSize(),    model.GetOverallTFStdError(),   model.GetOverallTFZVal(),
        model.GetOverallTFSig(),           model.GetOverallTFCILower(),    model.GetOverallTFCIUpper(),
        model.GetOverallTFExpEffectSize(), model.GetOverallTFExpCILower(), model.GetOverallTFExpCIUpper()};
}

/// The filled model is that of a run on the observed and the imputed studies, which are one more row of the
/// funnel, about the filled estimate. All else is that of a run without trim-and-fill, and so are models that
/// are built afterwards.
void ExpectOverallModelInPlace(MODELTYPE model, int group, const Rows& rows)
{
    MAModelSettings without = TrimFillSettings(EffectSettings(), model, TAU2_REML);
    without.SetOutcomesType(OUTCOME_BINARY);
    without.SetKnapHartAdjustType(KNAPP_HARTUNG_ADJUSTED);
    without.SetIsTRIMFILL(false);
    MAModelSettings trimming = without;
    trimming.SetModelType(model == MODEL_FIXED ? MODEL_RANDOM : MODEL_FIXED);
    trimming.SetEstTauType(TAU2_HE);
    MAModelSettings grouped = without;
    grouped.SetSubGroupIndex(group);
    MAModelSettings settings = grouped;
    settings.SetIsTRIMFILL(true);
    settings.SetTFModelType(trimming.GetModelType());
    settings.SetTFEstTauType(TAU2_HE);
    settings.SetTrimFillSide(TRIM_SIDE_LARGEST);

    BinRun run(settings, rows);
    BinRun plain(grouped, rows);
    const Row imputed = run.model.GetTFImputedEffectSize();
    EXPECT_EQ(imputed.empty(), rows[0][0] < 0);
    const std::vector<std::string> differing = {"TF", "FunnelX", "FunnelY", "FunnelCIX"};
    EXPECT_EQ(FirstDifference(ResultsBut(differing, run.model), ResultsBut(differing, plain.model)), "");
    Rows funnelX = plain.model.GetFunnelX();
    Rows funnelY = plain.model.GetFunnelY();
    funnelX.push_back(imputed);
    funnelY.push_back(run.model.GetTFImputedStdError());
    EXPECT_EQ(run.model.GetFunnelX(), funnelX);
    EXPECT_EQ(run.model.GetFunnelY(), funnelY);
    EXPECT_EQ(run.model.GetFunnelCIX().size(), plain.model.GetFunnelCIX().size());

    // The rows ascend: the last ones are trimmed, and mirrored about the trimming model of the others.
    const BinRun trimmed(trimming, Rows(rows.begin(), rows.end() - run.model.GetTFImputedN0()));
    Rows filled = rows;
    for (std::size_t i = 0; i < imputed.size(); ++i) {
        EXPECT_EQ(imputed[i], 2 * trimmed.model.GetEstEffectSize()[0] - rows[rows.size() - 1 - i][0]);
        filled.push_back({imputed[i], rows[rows.size() - 1 - i][1], 0});
    }
    const BinRun whole(without, filled);
    EXPECT_TRUE(Same(FilledEstimate(run.model), EntriesOf(whole.model, 0, estimateColumns)));
    EXPECT_EQ(run.model.GetFunnelCIX()[0].at(0), run.model.GetOverallTFEffectSize());

    run.model.BuildModel({1, 2, 4}, {1, 2, 4});
    plain.model.BuildModel({1, 2, 4}, {1, 2, 4});
    EXPECT_EQ(run.model.GetEstCIUpper().back(), plain.model.GetEstCIUpper().back());
}

} // namespace

/// The key of a figure says the method of pooling, the estimator, and where the imputed studies lie.
TEST(TrimAndFill, MeetsTheReferenceFigures)
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
            const BinRun run(settings, published.data.rows);
            EXPECT_TRUE(run.status.IsOK());
            ExpectFigures(run.model, figures, has("_REML_") ? iterativeTolerance : closedFormTolerance);
        }
    }
    EXPECT_EQ(compared, 5 * 18 - 3); // there are none where the root of the quadratic estimator is no number
}

/// On the side of the largest effects. After one pass the numbers are those of the deviations from the mean
/// of all studies.
TEST(TrimAndFill, CountsMissingStudiesByRanks)
{
    const Row equal = {0.1, 0.3};
    const Rows equalEffects = {equal, equal, {0.1, 0.5}}; // their mean rounds to a smaller number
    const Rows strongly = {{-1, 0.2}, {2, 1}, {3, 1}};
    const Example examples[] = {
        {"(4 * 40 - 110) / 19 = 2.63", skewed, TRIM_LINEAR, 1, {-10, -9, -8}},
        {"9.5 - sqrt(40.25) = 3.16", skewed, TRIM_QUADRATIC, 1, {-10, -9, -8}},
        {"quadratic as any other", skewed, static_cast<TRIMFMETHOD>(9), 1, {-10, -9, -8}},
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
        EXPECT_TRUE(Close(imputed, example.imputed, 1e-15, 10));
        EXPECT_EQ(run.Warns(MAStatusCode::TRIM_FILL_NOT_CONVERGED), example.maxIter == 1 && !imputed.empty());
    }
}

/// Mirrored effects have the mirrored result on the other side, to the last digit, be the side found by the
/// covariance or by the slope of the small-study test. Without both, as of studies of one size, the smallest
/// effects are trimmed, whatever the rounding of the sums.
TEST(TrimAndFill, AutomaticSideFollowsTheSlope)
{
    // The covariance of y / v = -4, 0.5, 0.25 and 1 / se = 2, 1, 0.5 is negative.
    ContRun three(TrimFillSettings(EffectSettings(), MODEL_FIXED), {{-1, 0.25}, {0.5, 1}, {1, 4}});
    three.settings.SetTrimFillSide(TRIM_SIDE_LARGEST); // of a trim-and-fill to come
    EXPECT_EQ(three.model.GetTRimFillSide(), TRIM_SIDE_SMALLEST);
    int imputed = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Rows rows = RandomStudies(seed, 8 + seed % 9, 0);
        const MAModelSettings settings =
            TrimFillSettings(EffectSettings(), seed % 2 == 0 ? MODEL_FIXED : MODEL_RANDOM);
        const ContRun run(settings, rows);
        const ContRun mirrored(settings, Mirrored(rows));
        EXPECT_EQ(run.model.GetTRimFillSide() + mirrored.model.GetTRimFillSide(), 3);
        EXPECT_EQ(run.model.GetTFImputedN0(), mirrored.model.GetTFImputedN0());
        EXPECT_EQ(run.model.GetOverallTFCILower(), -mirrored.model.GetOverallTFCIUpper());
        imputed += run.model.GetTFImputedN0();

        const SmallStudyRun<MAContModel> tested(settings, rows);
        const SmallStudyRun<MAContModel> testedMirrored(settings, Mirrored(rows));
        EXPECT_EQ(tested.model.GetTRimFillSide(), tested.model.GetRegBasedTestCoef() > 0 ? 1 : 2);
        EXPECT_EQ(tested.model.GetTRimFillSide() + testedMirrored.model.GetTRimFillSide(), 3);

        for (Row& row : rows)
            row[1] = 0.01 * seed; // collinear with the intercept
        EXPECT_EQ(SmallStudyRun<MAContModel>(EffectSettings(), rows).model.GetTRimFillSide(),
                  TRIM_SIDE_SMALLEST);
    }
    EXPECT_GT(imputed, 20); // there was something to compare
}

TEST(TrimAndFill, LeavesTheOverallModelInPlace)
{
    for (const MODELTYPE model : {MODEL_FIXED, MODEL_RANDOM}) {
        for (const int group : {-1, 2}) {
            SCOPED_TRACE(testing::Message() << "model " << model << ", group " << group);
            ExpectOverallModelInPlace(model, group, leaning);
            ExpectOverallModelInPlace(model, group, Mirrored(leaning)); // nothing to fill on that side
        }
    }
}

TEST(TrimAndFill, NeedsTwoStudiesAndInverseVariances)
{
    const MAModelSettings settings = TrimFillSettings(EffectSettings(), MODEL_FIXED);
    EXPECT_EQ(ContRun(settings, {}).status, KXStatus(MAStatusCode::NO_ANALYSED_STUDY));
    const ContRun one(settings, {{1, 1}});
    EXPECT_TRUE(one.status.IsOK());
    EXPECT_EQ(one.model.GetOverallTFEffectSize(), missing);

    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const BinRun run(TrimFillSettings(pooling.Of(TableSettings()), pooling.model),
                         {{12, 88, 20, 80}, {15, 85, 25, 75}, {9, 91, 8, 92}});
        EXPECT_TRUE(run.status.IsOK());
        EXPECT_EQ(run.Warns(MAStatusCode::TRIM_FILL_NOT_RUN), pooling.IsBinary());
        EXPECT_EQ(FilledEstimate(run.model) == Row(9, missing), pooling.IsBinary());
        EXPECT_EQ(run.model.GetFunnelX().size(), pooling.IsBinary() ? 1U : 2U);
    }
}
