// Many sets in one call: each column beside the models of one set, bit for bit.

#include "support/BulkColumns.h"
#include "support/Compare.h"
#include "support/LaneCodes.h"

#include "meta_analysis/bulk/MABulkPooling.h"
#include "meta_analysis/bulk/MALanePooler.h"
#include "meta_analysis/pooling/MAContinousFixEffectModel.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <bit>
#include <cstdint>
#include <functional>
#include <random>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

struct Set
{
    std::vector<double> effects;
    std::vector<double> variances;
};

double OrNaN(double value)
{
    return KXMV::IsMissing(value) ? notANumber : value;
}

std::uint64_t BitsOf(double value)
{
    return std::isnan(value) ? 1 : std::bit_cast<std::uint64_t>(value);
}

/// Every wanted column and set with the same bits; a column that is not wanted is left alone.
void ExpectSameColumns(const BulkColumns& actual, const BulkColumns& expected, const char* what)
{
    for (std::size_t i = 0; i < actual.values.size(); ++i)
        for (std::size_t set = 0; set < expected.values[i].size(); ++set) {
            const bool isWanted = actual.results.*BulkColumns::numbers[i] != nullptr;
            const double value = isWanted ? expected.values[i][set] : -7.0;
            ASSERT_EQ(BitsOf(actual.values[i][set]), BitsOf(value))
                << what << ", column " << i << ", set " << set << ": "
                << Differs(actual.values[i][set], value).message();
        }
    for (std::size_t i = 0; i < actual.integers.size(); ++i) {
        if (actual.results.*BulkColumns::counts[i] != nullptr) {
            ASSERT_EQ(actual.integers[i], expected.integers[i]) << what << ", column " << i;
        }
    }
}

template <class Model>
void Give(Model& model, const Set& set, double alpha)
{
    model.SetEffectSizes(&set.effects);
    model.SetVariances(&set.variances);
    model.SetSignLevel(alpha);
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
}

const MAPooledModel& PooledBy(MARandomEffectModel& model, const Set& set, const MARandomEffectsChoice& choice)
{
    model.SetEstimationType(choice.estimator);
    model.SetTau2Search(choice.search);
    model.SetKHAdjType(choice.knappHartung);
    model.SetTau2Interval(choice.tau2Interval);
    model.SetPrediction(choice.prediction);
    Give(model, set, choice.alpha);
    return model.GetPooledModel();
}

/// The single-analysis class on the studies that can be pooled.
void PutExpected(BulkColumns& columns, std::size_t at, const Set& all, const MABulkModel& choice)
{
    Set set;
    int leftOut = 0;
    for (std::size_t i = 0; i < all.effects.size(); ++i) {
        const double y = all.effects[i];
        const double v = all.variances[i];
        if (std::isfinite(y) && y != missing && std::isfinite(v) && v > 0.0 && std::isfinite(1.0 / v)) {
            set.effects.push_back(y);
            set.variances.push_back(v);
        } else if (!std::isnan(y) && !std::isnan(v)) {
            ++leftOut;
        }
    }
    MAPooledModel model;
    int status = set.effects.empty() ? MAStatusCode::NO_STUDY_IN_RUN : 0;
    if (const auto* random = std::get_if<MARandomEffectsChoice>(&choice); random && status == 0) {
        MARandomEffectModel single;
        model = PooledBy(single, set, *random);
        const bool isDoubtful = single.HasDoubtfulTau2() || std::isinf(model.tau2);
        status = isDoubtful ? MAStatusCode::TAU2_DOUBTFUL : 0;
    } else if (status == 0) {
        MAContinousFixEffectModel single;
        single.SetNullHypothesis(std::get<MAFixedEffectChoice>(choice).nullHypothesis);
        Give(single, set, std::get<MAFixedEffectChoice>(choice).alpha);
        model = single.GetPooledModel();
    }
    const MAEstimate& effect = model.effect;
    const double values[] = {effect.estimate,
                             effect.stdError,
                             effect.statistic,
                             effect.pValue.value,
                             0.0 - effect.pValue.Log10(),
                             effect.ciLower,
                             effect.ciUpper,
                             model.tau2,
                             model.tau2Results.lower,
                             model.tau2Results.upper,
                             model.homogeneity.q,
                             model.homogeneity.pValue.value,
                             model.heterogeneity.i2,
                             model.prediction.lower,
                             model.prediction.upper};
    for (std::size_t i = 0; i < std::size(values); ++i)
        columns.values[i][at] = values[i] == -missing ? notANumber : OrNaN(values[i]);
    const int integers[] = {static_cast<int>(set.effects.size()), leftOut, model.homogeneity.df, status};
    for (std::size_t i = 0; i < std::size(integers); ++i)
        columns.integers[i][at] = integers[i];
}

/// Ragged sets, ordinary ones between those that no arithmetic likes.
std::vector<Set> HostileSets()
{
    std::vector<Set> sets = {
        {},
        {{0.3}, {0.1}},
        {{0.3, 0.3}, {0.1, 0.2}},
        {{0.3, -0.9}, {0.1, 0.1}},
        {{0.0, 0.0, 0.0}, {1.0, 2.0, 3.0}},
        {{1.0, 1.0, 1.0, 1.0}, {0.5, 0.5, 0.5, 0.5}},
        {{-1.0, 0.0, 1.0}, {1.0, 1.0, 1.0}},
        {{0.1, 9.0, 0.2, 0.1}, {1e-12, 1.0, 1e12, 1e-3}},
        {{1e-150, -3e-150, 2e-150}, {1e-300, 2e-300, 4e-300}},
        {{1e150, -3e150, 2e150}, {1e300, 2e300, 1e299}},
        {{1e160, -1e160, 3e160}, {1.0, 2.0, 3.0}},
        {{0.0, 1e90, 2.0}, {1.0, 1.0, 1.0}},
        {{notANumber, 0.4, 0.1, 0.2}, {0.1, notANumber, 0.2, 0.3}},
        {{infinity, 0.4, missing, 0.2, 0.5}, {0.1, 0.0, 0.2, -0.3, infinity}},
        {{0.1, 0.2, 0.3}, {0x1p-1024, 0x1.0000000000004p-1024, 1e-3}},
        {{50.0, 51.0, 50.5}, {0.1, 0.1, 0.1}},
        {{4.0, 3.0, -5.0, 2.0, -2.0, 0.5}, {9.0, 0.01, 0.02, 4.0, 0.01, 30.0}},
    };
    std::mt19937_64 random(7);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> logVariance(-6.0, 1.0);
    const std::size_t ordinary = Repetitions(300);
    for (std::size_t i = 0; i < ordinary; ++i) {
        const std::size_t count = i % 97 == 96 ? 700 : i % 41 == 40 ? 257 : 2 + random() % 14;
        const double spread = i % 3 == 0 ? 0.0 : i % 3 == 1 ? 0.3 : 2.0;
        Set set;
        for (std::size_t study = 0; study < count; ++study) {
            const double v = i % 5 == 0 ? 0.25 : std::exp(logVariance(random));
            set.variances.push_back(random() % 50 == 0 ? 0.0 : v);
            set.effects.push_back(random() % 30 == 0
                                      ? notANumber
                                      : 0.2 + spread * normal(random) + std::sqrt(v) * normal(random));
        }
        sets.insert(sets.begin() + static_cast<std::ptrdiff_t>(random() % (sets.size() + 1)), set);
    }
    return sets;
}

/// The same sets in each form that a call takes.
struct Forms
{
    explicit Forms(const std::vector<Set>& sets) : setCount(sets.size())
    {
        for (const Set& set : sets) {
            effects.insert(effects.end(), set.effects.begin(), set.effects.end());
            variances.insert(variances.end(), set.variances.begin(), set.variances.end());
            offsets.push_back(effects.size());
            studyCount = std::max(studyCount, set.effects.size());
        }
        blockEffects.assign(setCount * studyCount, notANumber);
        blockVariances.assign(setCount * studyCount, notANumber);
        for (std::size_t s = 0; s < setCount; ++s)
            for (std::size_t i = 0; i < sets[s].effects.size(); ++i) {
                blockEffects[i * setCount + (setCount - 1 - s)] =
                    sets[s].effects[i];                                    // studies x sets, backwards
                blockVariances[s * studyCount + i] = sets[s].variances[i]; // sets x studies
            }
    }

    MARaggedSets Ragged() const { return {effects.data(), variances.data(), offsets.data(), setCount}; }
    MABlockSets Block() const
    {
        const auto sets = static_cast<std::ptrdiff_t>(setCount);
        return {{blockEffects.data() + setCount - 1, sets, -1},
                {blockVariances.data(), 1, static_cast<std::ptrdiff_t>(studyCount)},
                studyCount,
                setCount};
    }

    std::size_t setCount;
    std::size_t studyCount = 0;
    std::vector<double> effects, variances, blockEffects, blockVariances;
    std::vector<std::size_t> offsets = {0};
};

std::vector<MABulkModel> Models()
{
    std::vector<MABulkModel> models = {MAFixedEffectChoice{}, MAFixedEffectChoice{0.1, 1e-4}};
    int i = 0;
    for (int estimator = TAU2_HE; estimator <= TAU2_EB; ++estimator)
        for (const TAU2SEARCH search : {TAU2_SEARCH_SCORING, TAU2_SEARCH_GLOBAL})
            for (int interval = TAU2_INTERVAL_NONE; interval <= TAU2_INTERVAL_PROFILE_LIKELIHOOD;
                 ++interval, ++i) {
                MARandomEffectsChoice choice;
                choice.estimator = static_cast<TAU2ESTIMATOR>(estimator);
                choice.search = search;
                choice.tau2Interval = static_cast<TAU2INTERVAL>(interval);
                choice.knappHartung = static_cast<KNAPPHADJTYPE>(i % 4);
                choice.prediction = static_cast<PREDICTIONTYPE>(i % 3);
                choice.alpha = i % 5 == 4 ? 0.5 : 0.05;
                models.push_back(choice);
            }
    return models;
}

} // namespace

TEST(MABulkPooling, AgreesWithTheModelsOfOneSetToTheBit)
{
    const std::vector<Set> sets = HostileSets();
    const Forms forms(sets);
    std::mt19937_64 random(1);
    for (const MABulkModel& model : Models()) {
        BulkColumns expected(sets.size());
        for (std::size_t set = 0; set < sets.size(); ++set)
            PutExpected(expected, set, sets[set], model);
        const auto* choice = std::get_if<MARandomEffectsChoice>(&model);
        SCOPED_TRACE(testing::Message() << "estimator " << (choice ? choice->estimator : -1) << " search "
                                        << (choice ? choice->search : -1) << " interval "
                                        << (choice ? choice->tau2Interval : -1));
        for (const int threads : {1, 3}) {
            BulkColumns ragged(sets.size());
            ASSERT_TRUE(PoolSets(forms.Ragged(), model, ragged.results, threads).IsOK());
            ExpectSameColumns(ragged, expected, "ragged");
            BulkColumns block(sets.size());
            ASSERT_TRUE(PoolSets(forms.Block(), model, block.results, threads).IsOK());
            ExpectSameColumns(block, expected, "block");
        }
        for (int i = 0; i < 6; ++i) {
            const std::size_t half = random();
            BulkColumns some(sets.size(), half & random());
            ASSERT_TRUE(PoolSets(forms.Ragged(), model, some.results).IsOK());
            ExpectSameColumns(some, expected, "some columns");
        }
    }
}

/// Registers of each width that this processor has, a few sets at a time.
TEST(MALanePooler, HasTheSameBitsInEveryRegister)
{
    std::vector<MAGatheredSet> sets;
    for (const Set& set : HostileSets()) {
        if (set.effects.size() > MALanePooler::mostStudies)
            continue;
        MAGatheredSet& gathered = sets.emplace_back(set.effects.size());
        for (std::size_t i = 0; i < set.effects.size(); ++i)
            gathered.Add(set.effects[i], set.variances[i]);
    }
    MAWantedResults wanted;
    wanted.heterogeneityBounds = wanted.likelihood = false;
    for (const MABulkModel& model : Models()) {
        const auto* const choice = std::get_if<MARandomEffectsChoice>(&model);
        if (choice == nullptr || !MALanePooler::Takes(*choice, wanted))
            continue;
        MAQuantiles quantiles(choice->alpha);
        for (const MALaneCode* const code : LaneCodes()) {
            const std::size_t laneCount = code->kernels.laneCount;
            MALanePooler pooler(code->kernels);
            std::size_t inLanes = 0;
            for (std::size_t set = 0; set + laneCount <= sets.size(); ++set) {
                pooler.Load({sets.data() + set, laneCount});
                const std::optional<MAPooledModel>& actual = pooler.Pool(*choice, wanted, quantiles)[0];
                if (!actual.has_value())
                    continue;
                ++inLanes;
                const MAPooledModel expected = PoolRandomEffects(sets[set].Studies(), *choice);
                EXPECT_EQ(actual->effect.estimate, expected.effect.estimate);
                EXPECT_EQ(actual->tau2, expected.tau2);
                EXPECT_EQ(actual->tau2Results.lower, expected.tau2Results.lower);
                EXPECT_EQ(actual->homogeneity.q, expected.homogeneity.q);
                EXPECT_EQ(actual->heterogeneity.i2, expected.heterogeneity.i2);
            }
            EXPECT_GT(inLanes, sets.size() / 2) << "most sets must not be left";
        }
    }
}

/// Colditz et al. (1994), JAMA 271, 698-702: BCG vaccination, log risk ratios. tau², estimate and standard
/// error of REML as in Viechtbauer (2010), Journal of Statistical Software 36(3), section 3.1.
TEST(MABulkPooling, HasThePublishedFigures)
{
    const std::vector<double> tables[] = {
        {4, 119, 11, 128},     {6, 300, 29, 274},      {3, 228, 11, 209},        {62, 13536, 248, 12619},
        {33, 5036, 47, 5761},  {180, 1361, 372, 1079}, {8, 2537, 10, 619},       {505, 87886, 499, 87892},
        {29, 7470, 45, 7232},  {17, 1699, 65, 1600},   {186, 50448, 141, 27197}, {5, 2493, 3, 2338},
        {27, 16886, 29, 17825}};
    Set bcg;
    for (const std::vector<double>& t : tables) {
        bcg.effects.push_back(std::log(t[0] / (t[0] + t[1]) / (t[2] / (t[2] + t[3]))));
        bcg.variances.push_back(1 / t[0] - 1 / (t[0] + t[1]) + 1 / t[2] - 1 / (t[2] + t[3]));
    }
    MARandomEffectsChoice choice;
    choice.search = TAU2_SEARCH_GLOBAL;
    choice.tau2Interval = TAU2_INTERVAL_Q_PROFILE;
    const Forms forms(std::vector<Set>(9, bcg));
    BulkColumns columns(9);
    ASSERT_TRUE(PoolSets(forms.Ragged(), choice, columns.results).IsOK());
    for (std::size_t set = 0; set < 9; ++set) {
        EXPECT_NEAR(columns.results.tau2[set], 0.3132, 5e-5);
        EXPECT_NEAR(columns.results.estimate[set], -0.7145, 5e-5);
        EXPECT_NEAR(columns.results.stdError[set], 0.1798, 5e-5);
        EXPECT_NEAR(columns.results.tau2Lower[set], 0.1197, 5e-5);
        EXPECT_NEAR(columns.results.tau2Upper[set], 1.1115, 5e-5);
        EXPECT_NEAR(columns.results.q[set], 152.2330, 5e-5);
    }
}

TEST(MABulkPooling, RefusesWhatItCannotUse)
{
    const Forms forms({{{0.1, 0.2}, {1.0, 1.0}}, {{0.1, 0.2}, {1.0, 1.0}}});
    const std::size_t falling[] = {0, 3, 2};
    MARaggedSets sets = forms.Ragged();
    const auto statusOf = [](const auto& some, const MABulkModel& model) {
        BulkColumns columns(2);
        const int code = PoolSets(some, model, columns.results).GetCode();
        EXPECT_EQ(columns.values[0][0] == -7.0, code != 0) << "writes nothing where it refuses";
        return code;
    };
    using Change = std::function<void(MARandomEffectsChoice&)>;
    const std::pair<int, Change> changes[] = {
        {0, [](auto&) {}},
        {MAStatusCode::BULK_ALPHA_OUTSIDE, [](auto& c) { c.alpha = 0.0; }},
        {MAStatusCode::BULK_ALPHA_OUTSIDE, [](auto& c) { c.alpha = 1.0; }},
        {MAStatusCode::BULK_ALPHA_OUTSIDE, [](auto& c) { c.alpha = notANumber; }},
        {MAStatusCode::BULK_CHOICE_UNKNOWN, [](auto& c) { c.estimator = static_cast<TAU2ESTIMATOR>(7); }},
        {MAStatusCode::BULK_CHOICE_UNKNOWN, [](auto& c) { c.search = static_cast<TAU2SEARCH>(2); }},
        {MAStatusCode::BULK_CHOICE_UNKNOWN, [](auto& c) { c.knappHartung = static_cast<KNAPPHADJTYPE>(-1); }},
        {MAStatusCode::BULK_CHOICE_UNKNOWN, [](auto& c) { c.tau2Interval = static_cast<TAU2INTERVAL>(3); }},
        {MAStatusCode::BULK_CHOICE_UNKNOWN, [](auto& c) { c.prediction = static_cast<PREDICTIONTYPE>(3); }},
        {MAStatusCode::BULK_CHOICE_UNKNOWN, [](auto& c) { c.limits.tolerance = notANumber; }},
    };
    for (const auto& [code, change] : changes) {
        MARandomEffectsChoice choice;
        change(choice);
        EXPECT_EQ(statusOf(sets, choice), code);
    }
    EXPECT_EQ(statusOf(sets, MAFixedEffectChoice{infinity, 0.05}), MAStatusCode::BULK_CHOICE_UNKNOWN);
    sets.offsets = falling;
    EXPECT_EQ(statusOf(sets, MAFixedEffectChoice{}), MAStatusCode::INPUT_NOT_GIVEN);
    EXPECT_EQ(statusOf(MARaggedSets{nullptr, nullptr, nullptr, 2}, MAFixedEffectChoice{}),
              MAStatusCode::INPUT_NOT_GIVEN);
    EXPECT_EQ(statusOf(MABlockSets{{}, {}, 3, 2}, MAFixedEffectChoice{}), MAStatusCode::INPUT_NOT_GIVEN);
    BulkColumns none(0);
    EXPECT_TRUE(PoolSets(MARaggedSets{}, MAFixedEffectChoice{}, none.results, 4).IsOK());
    BulkColumns empty(2);
    EXPECT_TRUE(PoolSets(MABlockSets{{}, {}, 0, 2}, MAFixedEffectChoice{}, empty.results).IsOK());
    EXPECT_EQ(empty.results.status[1], MAStatusCode::NO_STUDY_IN_RUN);
}
