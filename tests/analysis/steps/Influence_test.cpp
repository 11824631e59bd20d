#include "support/Poolings.h"
#include "support/Published.h"
#include "support/Tables.h"

#include "meta_analysis/pooling/MADeletedFixedModels.h"
#include "meta_analysis/pooling/MADeletedModels.h"
#include "meta_analysis/pooling/MAPooling.h"

#include <gmock/gmock.h>

#include <map>
#include <numeric>
#include <random>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const std::map<std::string, TAU2ESTIMATOR> estimators = {{"DL", TAU2_DL}, {"REML", TAU2_REML}};

MAModelSettings WithInfluence(MAModelSettings settings)
{
    settings.SetTau2Search(TAU2_SEARCH_GLOBAL);
    settings.SetInfluence(true);
    return settings;
}

Row NumbersOf(const nlohmann::json& list)
{
    Row numbers;
    for (const nlohmann::json& entry : list)
        numbers.push_back(Number(entry));
    return numbers;
}

/// The figures have 15 digits, but their tau² is that of an iteration which stopped at a small step.
void ExpectFigures(const MABaseModel& model, const nlohmann::json& figures)
{
    constexpr double tolerance = 2e-7;
    const nlohmann::json& influence = figures.at("influence");
    const std::map<const char*, Row> rows = {{"rstudent", model.GetInfluenceStudentizedResidual()},
                                             {"dffits", model.GetInfluenceDFFITS()},
                                             {"cook_d", model.GetInfluenceCookDistance()},
                                             {"cov_ratio", model.GetInfluenceCovarianceRatio()},
                                             {"Q_deleted", model.GetInfluenceQDeleted()},
                                             {"hat", model.GetInfluenceHat()},
                                             {"weight_percent", model.GetInfluenceWeight()}};
    for (const auto& [name, row] : rows)
        EXPECT_TRUE(Close(row, NumbersOf(influence.at(name)), tolerance, 0.01)) << name;
    if (influence.contains("tau2_deleted")) {
        EXPECT_TRUE(
            Close(model.GetInfluenceTau2Deleted(), NumbersOf(influence.at("tau2_deleted")), tolerance));
    }
    if (!figures.contains("baujat"))
        return;
    EXPECT_TRUE(Close(model.GetBaujatX(), NumbersOf(figures.at("baujat").at("x")), tolerance, 0.01));
    EXPECT_TRUE(Close(model.GetBaujatY(), NumbersOf(figures.at("baujat").at("y")), tolerance, 0.01));
}

struct EffectVectors
{
    EffectVectors Without(std::size_t i) const
    {
        EffectVectors others = *this;
        others.effects.erase(others.effects.begin() + static_cast<std::ptrdiff_t>(i));
        others.variances.erase(others.variances.begin() + static_cast<std::ptrdiff_t>(i));
        return others;
    }

    Row effects;
    Row variances;
};

double MeanOf(const Row& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

} // namespace

TEST(Influence, AgreesWithReference)
{
    for (const std::string name :
         {"bcg_vaccine", "passive_smoking", "teacher_expectancy", "writing_to_learn"}) {
        Published published(name);
        const bool hasTables = name == "bcg_vaccine";
        const nlohmann::json figures = LoadReference(name + (hasTables ? "_log_risk_ratio_more" : "_more"));
        published.settings.SetBinaryEstType(BIN_RISK_RATIO);
        published.settings.SetWeightType(WEIGHT_INVERSE_VARIANCE);
        for (const std::string model : {"fixed", "DL", "REML"}) {
            SCOPED_TRACE(name + ", " + model);
            MAModelSettings settings = WithInfluence(published.settings);
            settings.SetModelType(model == "fixed" ? MODEL_FIXED : MODEL_RANDOM);
            settings.SetLeaveOneOut(true); // whose models serve without the adjustment
            if (model != "fixed")
                settings.SetEstTauType(estimators.at(model));
            for (const KNAPPHADJTYPE scalesNothing : {KNAPP_HARTUNG_NONE, KNAPP_HARTUNG_ADJUSTED}) {
                settings.SetKnapHartAdjustType(scalesNothing);
                ExpectFigures(BinRun(settings, published.data.rows).model, figures.at(model));
            }
        }
    }
}

/// Rules of R's metafor 3.8-1, influence of rma(method = "FE") on the log risk ratios.
TEST(Influence, NamesTheStudiesThatStandOut)
{
    Published bcg("bcg_vaccine");
    bcg.settings.SetBinaryEstType(BIN_RISK_RATIO);
    bcg.settings.SetModelType(MODEL_FIXED);
    bcg.settings.SetWeightType(WEIGHT_INVERSE_VARIANCE);
    const BinRun run(WithInfluence(bcg.settings), bcg.data.rows);
    EXPECT_TRUE(Close(run.model.GetInfluenceCutoffs(),
                      {1.959963984540054, 3.0 / std::sqrt(12.0), 0.454936423119573, 3.0 / 13.0, 1.0}, 1e-12));
    const int all = INFLUENCE_RESIDUAL + INFLUENCE_DFFITS + INFLUENCE_COOK;
    const std::vector<int> rules = {0, 1, 0, all, 0, all + INFLUENCE_HAT, 1, all + INFLUENCE_HAT,
                                    0, 1, 0, 0,   0};
    EXPECT_EQ(run.model.GetInfluenceRules(), rules);
}

/// Of the poolings of counts only Peto's has weights that are inverse variances; none has a tau².
TEST(Influence, OfPooledTablesHasDffitsForPetoAlone)
{
    const Published bcg("bcg_vaccine");
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const BinRun run(WithInfluence(pooling.Of(bcg.settings)), bcg.data.rows);
        if (!run.model.GetTau2Var().empty() && !KXMV::IsMissing(run.model.GetTau2Var()[0]))
            continue;
        const bool isInverse = run.model.GetWeightType() == WEIGHT_INVERSE_VARIANCE;
        EXPECT_EQ(KXMV::IsMissing(run.model.GetInfluenceDFFITS()[0]),
                  !isInverse && pooling.effect != BIN_PETO_ODDS_RATIO);
        EXPECT_EQ(run.model.GetInfluenceWeight()[0], 100.0 * run.model.GetInfluenceHat()[0]);
        EXPECT_TRUE(KXMV::IsMissing(run.model.GetInfluenceTau2Deleted()[0]));
    }
}

TEST(Influence, NeedsTwoStudiesBesideTheDeletedOne)
{
    const Published bcg("bcg_vaccine");
    const BinRun pair(WithInfluence(bcg.settings), {bcg.data.rows[0], bcg.data.rows[1]});
    const Row none(2, KXMV::Missing());
    EXPECT_EQ(pair.model.GetInfluenceStudentizedResidual(), none);
    EXPECT_EQ(pair.model.GetInfluenceTau2Deleted(), none);
    EXPECT_EQ(pair.model.GetBaujatY(), none);
    EXPECT_NEAR(pair.model.GetInfluenceWeight()[0] + pair.model.GetInfluenceWeight()[1], 100.0, 1e-12);
    EXPECT_THAT(CodesOf(pair.model.GetWarnings()), testing::Contains(MAStatusCode::DELETION_UNDEFINED));
}

namespace {

/// Effects of variances that are equal or span a few or many powers of ten, with outliers, tau² at 0 or not,
/// in small and large units, and far from 0. From seed 60 on the outlier is so far that the powers of weights
/// underflow.
EffectVectors HostileStudies(unsigned seed)
{
    constexpr std::array<std::array<double, 2>, 4> unitsAndOffsets = {
        {{1.0, 0.0}, {1.0, 1e8}, {1e150, 0.0}, {1e-150, 0.0}}};
    const auto [unit, offset] = unitsAndOffsets[seed / 3 % 4];
    const double outlier = seed < 60 ? 6.0 : 1e48;
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal;
    EffectVectors studies;
    for (int i = 0; i < 3 + static_cast<int>(seed); ++i) {
        const double variance = std::exp(normal(generator) * (seed % 4));
        studies.variances.push_back(variance * unit * unit);
        studies.effects.push_back(offset + unit * normal(generator) * std::sqrt(variance + seed % 3) *
                                               (i == 2 ? outlier : 1.0));
    }
    return studies;
}

/// A tau² is compared with the smallest v + tau², of which the search leaves rounding alone, that of HE with
/// the mean of v, of which it is a difference, and an effect with its standard error; ten bits may be lost.
void ExpectPlain(const MAPooledModel& actual, const MAPooledModel& plain, double varianceScale)
{
    EXPECT_TRUE(Close(actual.tau2, plain.tau2, 1e-12, plain.tau2 + varianceScale));
    EXPECT_TRUE(Close(actual.effect.estimate, plain.effect.estimate, 1e-12, plain.effect.stdError));
    EXPECT_TRUE(Close(actual.effect.stdError, plain.effect.stdError, 1e-12));
    EXPECT_TRUE(Close(actual.effect.pValue.value, plain.effect.pValue.value, 1e-12, 1.0));
    EXPECT_TRUE(Close(actual.homogeneity.q, plain.homogeneity.q, 1e-12));
    EXPECT_EQ(actual.homogeneity.df, plain.homogeneity.df);
    EXPECT_TRUE(Close(actual.heterogeneity.i2, plain.heterogeneity.i2, 1e-12, 1.0));
    EXPECT_TRUE(Close(actual.heterogeneity.h2Upper, plain.heterogeneity.h2Upper, 1e-12));
    EXPECT_EQ(actual.tau2Results.convergence, plain.tau2Results.convergence);
}

} // namespace

TEST(DeletedModels, EqualPlainRefits)
{
    int found = 0;
    int foundFixed = 0;
    for (unsigned seed = 0; seed < 67; ++seed) {
        const EffectVectors studies = HostileStudies(seed);
        const MAFixedEffectChoice fixed = {0.1, 0.05};
        const MADeletedFixedModels fixedModels({studies.effects, studies.variances});
        MARandomEffectsChoice choice;
        choice.estimator =
            std::array{TAU2_ML, TAU2_REML, TAU2_EB, TAU2_DL, TAU2_HS, TAU2_HE, TAU2_SJ}[seed % 7];
        choice.knappHartung = seed % 2 == 0 ? KNAPP_HARTUNG_NONE : KNAPP_HARTUNG_ADJUSTED;
        choice.search = TAU2_SEARCH_GLOBAL;
        MADeletedModels models({studies.effects, studies.variances}, choice);
        for (std::size_t i = 0; i < studies.effects.size(); ++i) {
            SCOPED_TRACE(std::to_string(seed) + " without " + std::to_string(i));
            const EffectVectors others = studies.Without(i);
            const MAEffects effects = {others.effects, others.variances};
            const double scale = choice.estimator == TAU2_HE
                                     ? MeanOf(others.variances)
                                     : *std::min_element(others.variances.begin(), others.variances.end());
            if (const std::optional<MAPooledModel> model = models.Without(i); model && ++found)
                ExpectPlain(*model, PoolRandomEffects(effects, choice), scale);
            if (const std::optional<MAPooledModel> model = fixedModels.Without(i, fixed);
                model && ++foundFixed)
                ExpectPlain(*model, PoolFixedEffect(effects, fixed), scale);
        }
    }
    EXPECT_GT(found, 1600); // of 2412; the others need a plain refit
    EXPECT_GT(foundFixed, 2330);
}
