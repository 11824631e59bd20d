#include "support/LaneCodes.h"
#include "support/Published.h"
#include "support/Regression.h"

#include "meta_analysis/bulk/MABulkRegression.h"
#include "meta_analysis/bulk/MALaneEvaluations.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <deque>
#include <limits>
#include <map>
#include <string>

using namespace MA_NAMESPACE;

namespace {

/// Effects and variances of studies x sets, the design, and all columns of results.
struct Bulk
{
    Bulk(std::size_t k, std::size_t p, std::size_t sets)
        : studies(k), columns(p), setCount(sets), effects(k * sets), variances(k * sets), design(k * p)
    {}

    KXStatus Run(const MABulkRegression& model, int threads = 1, bool isBySet = false)
    {
        MABulkRegressionResults r;
        r.isBySet = isBySet;
        const auto ofSets = [&](const char* name) { return Fill(numbers[name], setCount, -7.0); };
        const auto ofCoefficients = [&](const char* name) {
            return Fill(numbers[name], setCount * columns, -7.0);
        };
        const auto counts = [&](const char* name) { return Fill(integers[name], setCount, -7); };
        r.coefficients = ofCoefficients("b"), r.stdErrors = ofCoefficients("se");
        r.statistics = ofCoefficients("stat"), r.pValues = ofCoefficients("p");
        r.minusLog10Ps = ofCoefficients("log"), r.ciLowers = ofCoefficients("lower");
        r.ciUppers = ofCoefficients("upper");
        r.covariance = Fill(numbers["cov"], setCount * columns * columns, -7.0);
        r.studyCount = counts("k"), r.leftOut = counts("left_out"), r.rank = counts("rank");
        r.tau2 = ofSets("tau2"), r.tau2Lower = ofSets("tau2_lower"), r.tau2Upper = ofSets("tau2_upper");
        r.q = ofSets("QE"), r.qDf = counts("QE_df"), r.qPValue = ofSets("QE_p"), r.i2 = ofSets("I2");
        r.rSquare = ofSets("R2"), r.dispersion = ofSets("dispersion"), r.modelStatistic = ofSets("QM");
        r.modelDf1 = counts("QM_df"), r.modelDf2 = counts("QM_df2"), r.modelPValue = ofSets("QM_p");
        r.modelMinusLog10P = ofSets("QM_log"), r.status = counts("status");
        return Run(model, r, threads);
    }

    KXStatus Run(const MABulkRegression& model, const MABulkRegressionResults& results, int threads) const
    {
        const auto sets = static_cast<std::ptrdiff_t>(setCount);
        return RegressSets({{effects.data(), sets, 1}, {variances.data(), sets, 1}, studies, setCount},
                           {design.data(), static_cast<std::ptrdiff_t>(columns), 1, columns}, model, results,
                           threads);
    }

    template <class Number>
    static Number* Fill(std::vector<Number>& column, std::size_t size, Number value)
    {
        column.assign(size, value);
        return column.data();
    }

    std::size_t studies, columns, setCount;
    std::vector<double> effects, variances, design;
    std::map<std::string, std::vector<double>> numbers;
    std::map<std::string, std::vector<int>> integers;
};

double OrNaN(double value)
{
    return KXMV::IsMissing(value) ? notANumber : value;
}

MARegSettings SettingsOf(const MABulkRegression& model, bool hasIntercept, int covariates)
{
    std::vector<int> positions;
    for (int j = 0; j < covariates; ++j)
        positions.push_back(2 + j);
    MARegSettings settings = RegressionOn(positions);
    settings.SetInterceptUse(hasIntercept);
    settings.SetEstTauType(allEstimators[model.tau2.estimator].code);
    settings.SetTau2Search(model.tau2.search);
    settings.SetTau2Interval(model.tau2Interval);
    settings.SetParameterTolerance(model.tau2.limits.tolerance);
    settings.SetMaxIterations(model.tau2.limits.maxIter);
    settings.SetKnapHartAdjust(model.knappHartung != MAConst::KNAPP_HARTUNG_NONE);
    settings.SetTruncAjustValue(model.knappHartung == MAConst::KNAPP_HARTUNG_TRUNCATED);
    settings.SetKnapHartIfHeterogeneous(model.knappHartung == MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS);
    settings.SetTestDistType(model.tests);
    settings.SetMultiDiser(model.hasDispersion);
    settings.SetConfidenceLevel(1.0 - model.alpha);
    return settings;
}

/// The first warning that is about the fit, not about records or settings.
int FirstWarning(const std::vector<int>& codes)
{
    for (const int code : codes)
        if (code != MAStatusCode::UNUSABLE_RECORD && code != MAStatusCode::TAU2_INTERVAL_UNAVAILABLE &&
            code != MAStatusCode::NO_ITERATION_ALLOWED)
            return code;
    return 0;
}

/// Adds what the engine says of a set, in the order of the columns' names, and of the bulk regression.
template <class Engine>
void ExpectEngineBits(const Bulk& bulk, std::size_t set, const MABulkRegression& model, const Rows& rows,
                      bool hasIntercept, const std::vector<std::size_t>& order)
{
    const Regression<Engine> single(
        SettingsOf(model, hasIntercept, static_cast<int>(bulk.columns) - (hasIntercept ? 1 : 0)), rows);
    const bool isError = single.status.IsError();
    const int status = isError ? single.status.GetCode() : FirstWarning(single.WarningCodes());
    EXPECT_EQ(bulk.integers.at("status")[set], status);
    const MARegOutputStats& out = *single.output;
    const auto equals = [&](const char* name, std::size_t position, double expected) {
        const double computed = bulk.numbers.at(name)[position];
        expected = isError ? notANumber : OrNaN(expected);
        EXPECT_TRUE(std::isnan(expected) ? std::isnan(computed)
                                         : std::memcmp(&computed, &expected, sizeof computed) == 0)
            << name << ' ' << position << ": " << computed << ", not " << expected;
    };
    const bool isF = out.GetFTestVal() != 0.0 || out.GetFDf1() > 0; // 0 where no F test is made
    for (std::size_t j = 0; j < bulk.columns && !isError; ++j) {
        const std::size_t position = order[j] * bulk.setCount + set;
        equals("b", position, out.GetEstimation()[j]);
        equals("se", position, out.GetBetaStandErr()[j]);
        equals("stat", position, out.GetBetaTest()[j]);
        equals("p", position, out.GetBetaTestPValue()[j]);
        equals("log", position, 0.0 - OrNaN(out.GetBetaTestLog10PValue()[j]));
        equals("lower", position, out.GetBetaConfInterValLower()[j]);
        equals("upper", position, out.GetBetaConfInterValUpper()[j]);
        const double stdError = OrNaN(out.GetBetaStandErr()[j]);
        const double diagonal =
            bulk.numbers.at("cov")[(order[j] * bulk.columns + order[j]) * bulk.setCount + set];
        // Rounding of a root and two products.
        EXPECT_TRUE(Close(diagonal, stdError * stdError, 1e-15)) << "variance of " << j;
    }
    const bool isFixed = !model.isRandom;
    equals("tau2", set, out.GetTau());
    equals("tau2_lower", set, out.GetTau2CILower());
    equals("tau2_upper", set, out.GetTau2CIUpper());
    equals("QE", set, out.GetResHomoChiSqure());
    equals("QE_p", set, out.GetResHomoPValue());
    equals("I2", set, out.GetIresSquare());
    equals("R2", set, isFixed ? notANumber : out.GetRSquare());
    equals("dispersion", set, out.GetMultiDisper());
    equals("QM", set, isF ? out.GetFTestVal() : out.GetWaldChiSquareTest());
    equals("QM_p", set, isF ? out.GetFPValue() : out.GetWaldPValue());
    equals("QM_log", set, 0.0 - OrNaN(out.GetModelTestLog10PValue()));
    if (isError)
        return;
    EXPECT_EQ(bulk.integers.at("QM_df")[set], isF ? out.GetFDf1() : out.GetWaldDf());
    EXPECT_EQ(bulk.integers.at("QM_df2")[set], isF ? out.GetFDf2() : 0);
    EXPECT_EQ(bulk.integers.at("k")[set], out.GetNGoodRecords());
    EXPECT_EQ(bulk.integers.at("left_out")[set], out.GetNBadRecords());
    EXPECT_EQ(bulk.integers.at("rank")[set], static_cast<int>(out.GetRedundancyInfo().Count()));
}

/// Sets over one design, the intercept in its second column, or none: from all studies down to one, with
/// collinear columns that missing studies make, a study without a predictor, and values of any kind.
Bulk HostileSets(bool hasIntercept)
{
    constexpr std::size_t k = 9;
    constexpr std::size_t p = 4;
    Bulk bulk(k, p, 60);
    const double hostile[] = {infinity, -infinity, 0.0, -1.0, 1e-310, 1e300, KXMV::Missing(), 1e-200};
    std::mt19937 generator(3);
    for (std::size_t set = 0; set < bulk.setCount; ++set) {
        const Rows rows = RandomStudies(static_cast<unsigned>(set), k, p);
        for (std::size_t i = 0; i < k; ++i) {
            const std::size_t at = i * bulk.setCount + set;
            bulk.effects[at] = set == 50 ? 0.0 : rows[i][0];
            bulk.variances[at] = rows[i][1] * (set % 7 == 3 && i == 2 ? 1e-14 : 1.0);
            if (generator() % 20 < set / 3)
                (generator() % 2 == 0 ? bulk.effects : bulk.variances)[at] = notANumber;
            if (set % 10 == 9 && i < 2)
                (i == 0 ? bulk.effects : bulk.variances)[at] = hostile[generator() % std::size(hostile)];
            bulk.design[i * p] = RandomStudies(99, k, 1)[i][2];
            bulk.design[i * p + 1] = hasIntercept ? 1.0 : static_cast<double>(i);
            bulk.design[i * p + 2] = i < 3 ? 1.0 : 0.0;
            bulk.design[i * p + 3] = i < 2 ? 5.0 : 2.0 + static_cast<double>(i % 2);
        }
    }
    bulk.design[7 * p] = notANumber;
    return bulk;
}

Rows RowsOfSet(const Bulk& bulk, std::size_t set, const std::vector<std::size_t>& predictors)
{
    Rows rows;
    for (std::size_t i = 0; i < bulk.studies; ++i) {
        rows.push_back({bulk.effects[i * bulk.setCount + set], bulk.variances[i * bulk.setCount + set]});
        if (std::isnan(rows.back()[0]) || std::isnan(rows.back()[1])) {
            rows.pop_back();
            continue;
        }
        for (const std::size_t column : predictors)
            rows.back().push_back(bulk.design[i * bulk.columns + column]);
    }
    return rows;
}

/// Each value of a choice with several of the others.
std::vector<MABulkRegression> Models()
{
    std::vector<MABulkRegression> models;
    for (int number = 0; number < 4 * estimatorCount; ++number) {
        MABulkRegression model;
        model.tau2.estimator = allEstimators[number % estimatorCount].type;
        model.tau2.search = static_cast<MAConst::TAU2SEARCH>(number / estimatorCount % 2);
        model.tau2.limits.maxIter = number == 4 ? 1 : 100;
        model.knappHartung = static_cast<MAConst::KNAPPHADJTYPE>(number % 4);
        model.tau2Interval = static_cast<MAConst::TAU2INTERVAL>((number + number / 14) % 3);
        model.tests = static_cast<MAConst::TESTDISTTYPE>(number % 2);
        model.alpha = 1.0 - (number % 3 == 0 ? 0.95 : 0.8); // as confidence levels have it
        models.push_back(model);
        model.isRandom = false;
        model.hasDispersion = number % 3 == 1;
        if (number < 4)
            models.push_back(model);
    }
    return models;
}

TEST(MABulkRegression, HasTheBitsOfSingleRegressions)
{
    for (const bool hasIntercept : {true, false}) {
        Bulk bulk = HostileSets(hasIntercept);
        const std::vector<std::size_t> order =
            hasIntercept ? std::vector<std::size_t>{1, 0, 2, 3} : std::vector<std::size_t>{0, 1, 2, 3};
        const std::vector<std::size_t> predictors(order.begin() + (hasIntercept ? 1 : 0), order.end());
        for (const MABulkRegression& model : Models()) {
            ASSERT_TRUE(bulk.Run(model).IsOK());
            for (std::size_t set = 0; set < bulk.setCount; ++set) {
                SCOPED_TRACE(testing::Message()
                             << allEstimators[model.tau2.estimator].code << " set " << set);
                const Rows rows = RowsOfSet(bulk, set, predictors);
                if (rows.empty())
                    EXPECT_EQ(bulk.integers["status"][set], MAStatusCode::NO_USABLE_STUDY);
                else if (model.isRandom)
                    ExpectEngineBits<MAREAlgorithm>(bulk, set, model, rows, hasIntercept, order);
                else
                    ExpectEngineBits<MAFEAlgorithm>(bulk, set, model, rows, hasIntercept, order);
            }
        }
    }
}

TEST(MABulkRegression, DependsNeitherOnThreadsNorOnTheOrderOfResults)
{
    Bulk one = HostileSets(true);
    Bulk others = one;
    const MABulkRegression model;
    ASSERT_TRUE(one.Run(model, 1).IsOK());
    ASSERT_TRUE(others.Run(model, 3, true).IsOK());
    EXPECT_EQ(one.integers, others.integers);
    for (std::size_t set = 0; set < one.setCount; ++set)
        for (std::size_t j = 0; j < one.columns; ++j) {
            EXPECT_TRUE(Same(others.numbers["p"][set * 4 + j], one.numbers["p"][j * one.setCount + set]));
            EXPECT_TRUE(Same(others.numbers["cov"][set * 16 + j * 4 + 3],
                             one.numbers["cov"][(j * 4 + 3) * one.setCount + set]));
        }
}

/// The interval starts from what the check of tau² evaluates, wanted or not.
TEST(MABulkRegression, HasTheSameIntervalWithoutOtherColumns)
{
    constexpr std::size_t k = 12;
    Bulk bulk(k, 4, 1000);
    std::mt19937 generator(1);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> stdError(0.03, 0.7);
    for (std::size_t i = 0; i < bulk.design.size(); ++i)
        bulk.design[i] = i % bulk.columns == 0 ? 1.0 : normal(generator);
    for (std::size_t i = 0; i < bulk.effects.size(); ++i) {
        const double error = stdError(generator);
        bulk.effects[i] = std::hypot(error, 0.2) * normal(generator);
        bulk.variances[i] = error * error;
    }
    MABulkRegression model;
    model.tau2Interval = MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD;
    model.alpha = 0.5;
    ASSERT_TRUE(bulk.Run(model).IsOK());
    std::vector<double> uppers(bulk.setCount);
    MABulkRegressionResults alone;
    alone.tau2Upper = uppers.data();
    ASSERT_TRUE(bulk.Run(model, alone, 1).IsOK());
    EXPECT_TRUE(Same(uppers, bulk.numbers["tau2_upper"]));
}

/// Rows of an intercept and predictors, a few more or less in each set.
MADesignRows DesignRows(std::size_t columns, unsigned set)
{
    MADesignRows rows;
    rows.columnCount = columns;
    for (const Row& study : RandomStudies(set, 12 + set % 3, columns - 1)) {
        rows.cells.push_back(1.0);
        rows.cells.insert(rows.cells.end(), study.begin() + 2, study.end());
        rows.cells.push_back(study[0]);
        rows.weights.push_back(1.0 / study[1]);
        rows.variances.push_back(1.0 / rows.weights.back());
    }
    return rows;
}

TEST(MALaneEvaluations, HaveTheBitsOfOneRegressionInEveryRegister)
{
    for (const MAConst::TAU2ESTIMATOR estimator : {MAConst::TAU2_REML, MAConst::TAU2_ML, MAConst::TAU2_EB})
        for (std::size_t columns = 1; columns <= mostLaneColumns; ++columns)
            for (const MALaneCode* const code : LaneCodes()) {
                MABulkRegression model;
                model.tau2 = {estimator, {}, MAConst::TAU2_SEARCH_GLOBAL};
                model.tau2Interval = MAConst::TAU2_INTERVAL_Q_PROFILE;
                const MARegSettings settings = MA_NAMESPACE::SettingsOf(model, true);
                std::deque<MASetRegression> sets;
                std::vector<MASetRegression*> begun;
                for (unsigned set = 0; set < code->fits.laneCount; ++set) {
                    begun.push_back(&sets.emplace_back(settings, model, MAWantedRegression(), columns, 14));
                    begun.back()->Begin(DesignRows(columns, set));
                }
                MALaneEvaluations(code->fits).Evaluate(begun);
                for (unsigned set = 0; set < code->fits.laneCount; ++set) {
                    MASetRegression alone(settings, model, MAWantedRegression(), columns, 14);
                    alone.Begin(DesignRows(columns, set));
                    const MASetRegression::Model& expected = alone.Finish();
                    const MASetRegression::Model& actual = sets[set].Finish();
                    EXPECT_EQ(actual.tau2, expected.tau2);
                    EXPECT_EQ(actual.tau2Results.lower, expected.tau2Results.lower);
                    EXPECT_EQ(actual.tau2Results.upper, expected.tau2Results.upper);
                    EXPECT_EQ(actual.residual.q, expected.residual.q);
                    EXPECT_EQ(actual.residual.i2, expected.residual.i2);
                }
            }
}

/// Log risk ratios on an intercept and the absolute latitude. The figures' own solver stops below a step of
/// 1e-12; p-values have up to a hundred times the relative error of their statistics.
TEST(MABulkRegression, AgreesWithPublishedFigures)
{
    const Rows studies = StudiesWith({"latitude"});
    Bulk bulk(studies.size(), 2, 1);
    bulk.effects = ColumnOf(studies, 0);
    bulk.variances = ColumnOf(studies, 1);
    for (std::size_t i = 0; i < studies.size(); ++i) {
        bulk.design[2 * i] = 1.0;
        bulk.design[2 * i + 1] = studies[i][2];
    }
    MABulkRegression model;
    model.tau2.search = MAConst::TAU2_SEARCH_GLOBAL;
    model.knappHartung = MAConst::KNAPP_HARTUNG_ADJUSTED;
    constexpr double tolerance = 1e-8;
    const nlohmann::json figures = LoadReference("bcg_vaccine")["risk_ratio"]["meta_regression_latitude"];
    for (const MAEstimator& estimator : allEstimators) {
        if (estimator.type == MAConst::TAU2_HS) // the figures have another weighting of its residuals
            continue;
        model.tau2.estimator = estimator.type;
        ASSERT_TRUE(bulk.Run(model).IsOK());
        const nlohmann::json& expected = figures.at(std::string(estimator.code) + "_knha");
        SCOPED_TRACE(estimator.code);
        for (const auto& [name, values] : bulk.numbers) { // those of the same names
            const nlohmann::json figure = expected.value(name == "QM" ? "F" : name, nlohmann::json());
            if (!figure.is_null()) {
                EXPECT_TRUE(Close(values, figure.is_array() ? figure : nlohmann::json{figure}, tolerance))
                    << name;
            }
        }
    }
}

TEST(MABulkRegression, RefusesWhatNoSetCanBeRegressedBy)
{
    Bulk bulk = HostileSets(true);
    const auto status = [&](auto change) {
        MABulkRegression model;
        change(model);
        return bulk.Run(model).GetCode();
    };
    EXPECT_EQ(status([](auto& model) { model.alpha = 1.0; }), MAStatusCode::BULK_ALPHA_OUTSIDE);
    EXPECT_EQ(status([](auto& model) { model.tau2.estimator = unknownEstimator; }),
              MAStatusCode::BULK_CHOICE_UNKNOWN);
    EXPECT_EQ(status([](auto& model) { model.tau2.limits.tolerance = notANumber; }),
              MAStatusCode::BULK_CHOICE_UNKNOWN);
    EXPECT_EQ(bulk.numbers["b"][0], -7.0); // nothing is written
    const double number = 1.0;
    const MABlockSets sets{{&number, 0, 0}, {&number, 0, 0}, 1, 1};
    EXPECT_EQ(RegressSets(sets, {nullptr, 0, 0, 1}, {}, {}).GetCode(), MAStatusCode::INPUT_NOT_GIVEN);
    EXPECT_TRUE(RegressSets(sets, {&number, 0, 0, 1}, {}, {}).IsOK());
}

} // namespace
