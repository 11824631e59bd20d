// The C interface: what a host in C relies on, and that it adds nothing to the numbers of the library.

#include "support/Compare.h"
#include "support/Data.h"
#include "support/Reference.h"

#include "meta_analysis/bulk/MABulkPooling.h"
#include "meta_analysis/bulk/meta_analysis.h"

#include <gmock/gmock.h>

#include <array>
#include <clocale>
#include <cstring>
#include <regex>
#include <sstream>

using namespace MA_NAMESPACE;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr double tolerance = 1e-12; // the figures have 15 digits

/// The last row first, which takes a negative stride.
ma_vector ReversedColumn(const Row& values)
{
    return {values.data() + values.size() - 1, -1};
}

struct Effects
{
    explicit Effects(std::size_t count) : effect(count), variance(count), exclusion(count)
    {
        results.size = sizeof results;
        results.effect = effect.data();
        results.variance = variance.data();
        results.exclusion = exclusion.data();
    }

    Row effect;
    Row variance;
    std::vector<std::int32_t> exclusion;
    ma_effect_results results{};
};

void ExpectReversed(const Effects& computed, const nlohmann::json& expected)
{
    const std::size_t last = computed.effect.size() - 1;
    for (std::size_t i = 0; i <= last; ++i) {
        const bool isPoolable = computed.exclusion[last - i] == MA_EXCLUSION_NONE;
        EXPECT_EQ(isPoolable, std::isfinite(Number(expected["vi"][i]))) << i;
        if (isPoolable) {
            EXPECT_TRUE(Close(computed.effect[last - i], Number(expected["yi"][i]), tolerance)) << i;
            EXPECT_TRUE(Close(computed.variance[last - i], Number(expected["vi"][i]), tolerance)) << i;
        }
    }
}

std::vector<std::string> SplitAtCommas(const char* text)
{
    std::string spaced = std::regex_replace(text, std::regex(", "), " ");
    std::istringstream words(spaced);
    return {std::istream_iterator<std::string>(words), {}};
}

TEST(CInterface, EffectsOfTablesAreTheReferenceFigures)
{
    const Rows rows =
        DataSet("magnesium")
            .Columns({"treatment_events", "treatment_nonevents", "control_events", "control_nonevents"});
    const std::array<Row, 4> counts{ColumnOf(rows, 0), ColumnOf(rows, 1), ColumnOf(rows, 2),
                                    ColumnOf(rows, 3)};
    const nlohmann::json reference = LoadReference("magnesium")["tables"];
    const std::pair<const char*, const char*> measures[] = {
        {"OR", "odds-ratio"}, {"PETO", "peto"}, {"RR", "risk-ratio"}, {"RD", "risk-difference"}};
    const std::pair<const char*, const char*> rules[] = {
        {"only0", "each"}, {"if0all", "all-if-any"}, {"all", "all"}, {"none", "none"}};
    for (const auto& [measure, measureWord] : measures)
        for (const auto& [rule, ruleWord] : rules) {
            SCOPED_TRACE(std::string(measure) + "_" + rule);
            ma_table_options options;
            ma_table_options_init(&options, sizeof options);
            ASSERT_EQ(ma_table_option_set(&options, "measure", measureWord), 0);
            ASSERT_EQ(ma_table_option_set(&options, "zero-cells", ruleWord), 0);
            Effects computed(rows.size());
            ASSERT_EQ(ma_effects_of_tables(ReversedColumn(counts[0]), ReversedColumn(counts[1]),
                                           ReversedColumn(counts[2]), ReversedColumn(counts[3]), rows.size(),
                                           &options, &computed.results),
                      0);
            ExpectReversed(computed, reference[std::string(measure) + "_" + rule]);
        }
}

TEST(CInterface, EffectsOfMeansAreTheReferenceFigures)
{
    const DataSet data("stroke_length_of_stay");
    std::array<Row, 6> columns;
    const char* const names[] = {"treatment_n", "treatment_mean", "treatment_sd",
                                 "control_n",   "control_mean",   "control_sd"};
    for (std::size_t i = 0; i < columns.size(); ++i)
        columns[i] = ColumnOf(data.Columns({names[i]}), 0);
    const auto group = [&](std::size_t first) {
        return ma_group_summaries{ReversedColumn(columns[first]), ReversedColumn(columns[first + 1]),
                                  ReversedColumn(columns[first + 2])};
    };
    const struct
    {
        const char* key;
        const char* measure;
        const char* option;
        const char* value;
    } cases[] = {{"MD", "mean-difference", "equal_variances", "off"},
                 {"MD_equal_var", "mean-difference", "equal_variances", "on"},
                 {"cohen_d", "cohens-d", "variance_adjustment", "off"},
                 {"cohen_d_adjusted", "cohens-d", "variance_adjustment", "on"},
                 {"hedges_g", "hedges-g", "variance_adjustment", "off"},
                 {"hedges_g_adjusted", "hedges-g", "variance_adjustment", "on"},
                 {"glass_control", "glass-delta", "glass_group", "control"},
                 {"glass_treatment", "glass-delta", "glass_group", "treatment"}};
    const nlohmann::json reference = LoadReference("stroke_length_of_stay");
    for (const auto& row : cases) {
        SCOPED_TRACE(row.key);
        ma_means_options options;
        ma_means_options_init(&options, sizeof options);
        ASSERT_EQ(ma_means_option_set(&options, "measure", row.measure), 0);
        ASSERT_EQ(ma_means_option_set(&options, row.option, row.value), 0);
        Effects computed(data.rows.size());
        ASSERT_EQ(ma_effects_of_means(group(0), group(3), data.rows.size(), &options, &computed.results), 0);
        ExpectReversed(computed, reference[row.key]);
    }
}

TEST(CInterface, StudiesWithoutAnEffectSizeHaveAReason)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const Rows tables = {{1, 9, 2, 8}, {nan, 9, 2, 8}, {1, -9, 2, 8},
                         {0, 0, 0, 0}, {0, 9, 0, 8},   {5, 0, 5, 0}};
    const std::int32_t reasons[] = {MA_EXCLUSION_NONE,           MA_EXCLUSION_MISSING_VALUE,
                                    MA_EXCLUSION_NEGATIVE_COUNT, MA_EXCLUSION_NO_PERSONS,
                                    MA_EXCLUSION_ZERO_CELLS,     MA_EXCLUSION_ZERO_CELLS};
    const std::array<Row, 4> counts{ColumnOf(tables, 0), ColumnOf(tables, 1), ColumnOf(tables, 2),
                                    ColumnOf(tables, 3)};
    ma_table_options options;
    ma_table_options_init(&options, sizeof options);
    ma_table_option_set(&options, "zero_cells", "none");
    Effects computed(tables.size());
    ASSERT_EQ(ma_effects_of_tables({counts[0].data(), 1}, {counts[1].data(), 1}, {counts[2].data(), 1},
                                   {counts[3].data(), 1}, tables.size(), &options, &computed.results),
              0);
    EXPECT_THAT(computed.exclusion, testing::ElementsAreArray(reasons));
    EXPECT_EQ(std::count_if(computed.effect.begin(), computed.effect.end(), [](double y) { return y == y; }),
              1);
    EXPECT_THAT(ma_exclusion_text(MA_EXCLUSION_ZERO_CELLS), HasSubstr("zero cells"));
}

/// Three sets of four studies, of which one is not in the second.
struct Block
{
    static constexpr std::size_t studies = 4;
    static constexpr std::size_t sets = 3;

    ma_matrix Effects() const { return {y.data() + y.size() - 1, -3, -1}; }
    ma_matrix Variances() const { return {v.data() + v.size() - 1, -3, -1}; }

    std::array<double, 12> y{0.5, 0.1, -0.2, 0.8, std::nan(""), 0.3, -0.4, 0.6, 0.9, 0.2, 0.2, -0.7};
    std::array<double, 12> v{0.1, 0.2, 0.1, 0.3, 0.1, 0.05, 0.2, 0.4, 0.1, 0.15, 0.1, 0.2};
};

TEST(CInterface, PoolingIsThatOfTheLibraryWithNegativeStrides)
{
    const Block block;
    std::array<double, Block::sets> lower, expected;
    ma_pool_results results{};
    results.size = sizeof results;
    results.pi_lower = lower.data();
    ma_pool_options options;
    ma_pool_options_init(&options, sizeof options);
    ASSERT_EQ(ma_pool_option_set(&options, "tau2", "pm"), 0);
    ASSERT_EQ(ma_pool_option_set(&options, "knapp-hartung", "truncated"), 0);
    ASSERT_EQ(ma_pool_option_set(&options, "prediction", "t-k-1"), 0);
    ASSERT_EQ(ma_pool_option_set(&options, "level", "0.9"), 0);
    ASSERT_EQ(
        ma_pool_block(block.Effects(), block.Variances(), Block::studies, Block::sets, &options, &results),
        0);

    MARandomEffectsChoice choice;
    choice.estimator = MAConst::TAU2_EB;
    choice.search = MAConst::TAU2_SEARCH_GLOBAL;
    choice.knappHartung = MAConst::KNAPP_HARTUNG_TRUNCATED;
    choice.prediction = MAConst::PREDICTION_T_K_MINUS_1;
    choice.alpha = 1 - 0.9;
    MABulkResults bulk;
    bulk.predictionLower = expected.data();
    Block reversed = block;
    std::reverse(reversed.y.begin(), reversed.y.end());
    std::reverse(reversed.v.begin(), reversed.v.end());
    ASSERT_TRUE(
        PoolSets(MABlockSets{{reversed.y.data(), 3, 1}, {reversed.v.data(), 3, 1}, 4, 3}, choice, bulk)
            .IsOK());
    EXPECT_EQ(lower, expected);
}

TEST(CInterface, RegressionOfOneSetHasTheReferenceFigures)
{
    const Rows rows = DataSet("bcg_vaccine").Columns({"latitude"});
    const nlohmann::json reference = LoadReference("bcg_vaccine");
    const Row y = reference["tables"]["RR_only0"]["yi"];
    const Row v = reference["tables"]["RR_only0"]["vi"];
    Row design;
    for (const Row& row : rows)
        design.insert(design.end(), {1.0, row[0]});
    ma_regression_options options;
    ma_regression_options_init(&options, sizeof options);
    ASSERT_EQ(ma_regression_option_set(&options, "tests", "normal"), 0);
    std::array<double, 2> b, se, p;
    double r2 = 0;
    ma_regression_results results{};
    results.size = sizeof results;
    results.coefficient = b.data();
    results.std_error = se.data();
    results.p = p.data();
    results.r2 = &r2;
    ASSERT_EQ(ma_regress_block({y.data(), 1, 0}, {v.data(), 1, 0}, {design.data(), 2, 1}, rows.size(), 1, 2,
                               &options, &results),
              0);
    const nlohmann::json& expected = reference["risk_ratio"]["meta_regression_latitude"]["REML_z"];
    for (std::size_t i = 0; i < 2; ++i) {
        // The reference iterates tau² to a step of 1e-12.
        EXPECT_TRUE(Close(b[i], Number(expected["b"][i]), 1e-9));
        EXPECT_TRUE(Close(se[i], Number(expected["se"][i]), 1e-9));
        EXPECT_TRUE(Close(p[i], Number(expected["p"][i]), 1e-9));
    }
    EXPECT_TRUE(Close(r2, Number(expected["R2"]), 1e-9));
}

/// A struct of options as another edition of the header declares it.
struct OtherEdition
{
    ma_pool_options known;
    double later;
};

TEST(CInterface, OptionsOfOtherEditionsKeepWhatTheyHave)
{
    const Block block;
    std::array<double, Block::sets> estimate, expected;
    ma_pool_results results{};
    results.size = sizeof results;
    const auto pool = [&](const ma_pool_options* options, double* column) {
        results.estimate = column;
        return ma_pool_block(block.Effects(), block.Variances(), Block::studies, Block::sets, options,
                             &results);
    };

    // An older one ends before the level; what lies behind it is the caller's.
    OtherEdition options;
    constexpr std::size_t older = offsetof(ma_pool_options, level);
    std::memset(&options, 0x7f, sizeof options);
    ASSERT_EQ(ma_pool_options_init(&options.known, older), 0);
    ASSERT_EQ(ma_pool_option_set(&options.known, "tau2", "dl"), 0);
    EXPECT_EQ(ma_pool_option_set(&options.known, "level", "0.9"), MA_STATUS_OPTION_UNKNOWN);
    EXPECT_EQ(options.known.threads, 0x7f7f7f7f);
    ASSERT_EQ(pool(&options.known, estimate.data()), 0);
    ma_pool_options whole;
    ma_pool_options_init(&whole, sizeof whole);
    whole.tau2 = MA_TAU2_DL;
    ASSERT_EQ(pool(&whole, expected.data()), 0);
    EXPECT_EQ(estimate, expected);

    // A newer one is refused when it says what this library does not know.
    ASSERT_EQ(ma_pool_options_init(&options.known, sizeof options), 0);
    EXPECT_EQ(pool(&options.known, estimate.data()), 0);
    options.later = 1;
    EXPECT_EQ(pool(&options.known, estimate.data()), MA_STATUS_STRUCT_FIELD_UNKNOWN);
    for (const std::size_t size : {std::size_t{0}, older + 1, std::size_t{1} << 40}) {
        options.known.size = size;
        EXPECT_EQ(pool(&options.known, estimate.data()), MA_STATUS_STRUCT_SIZE_UNKNOWN);
    }
}

TEST(CInterface, TakesEachWordThatItListsAndNoOther)
{
    ma_pool_options options;
    ma_pool_options_init(&options, sizeof options);
    for (const std::string& name : SplitAtCommas(ma_option_names(MA_OPTIONS_POOL))) {
        const char* const values = ma_option_values(MA_OPTIONS_POOL, name.c_str());
        ASSERT_NE(values, nullptr) << name;
        const bool areWords = std::strncmp(values, "a ", 2) != 0;
        if (areWords) {
            for (const std::string& value : SplitAtCommas(values))
                EXPECT_EQ(ma_pool_option_set(&options, name.c_str(), value.c_str()), 0) << name << value;
        }
        for (const char* const other : {"", "REML", "1.5.", "nan", "reml "})
            EXPECT_EQ(ma_pool_option_set(&options, name.c_str(), other), MA_STATUS_OPTION_VALUE_UNKNOWN)
                << name;
    }
    EXPECT_EQ(ma_pool_option_set(&options, "level", "95"), MA_STATUS_OPTION_VALUE_UNKNOWN);
    EXPECT_EQ(ma_pool_option_set(&options, "tau", "reml"), MA_STATUS_OPTION_UNKNOWN);
    EXPECT_EQ(ma_option_values(MA_OPTIONS_MEANS, "tau2"), nullptr);
    EXPECT_EQ(ma_option_names(99), nullptr);
}

TEST(CInterface, NullPointersAndWrongValuesAreStatuses)
{
    ma_pool_results results{};
    results.size = sizeof results;
    EXPECT_EQ(ma_pool_block({nullptr, 1, 1}, {nullptr, 1, 1}, 1, 1, nullptr, &results),
              MA_STATUS_INPUT_NOT_GIVEN);
    EXPECT_EQ(ma_pool_ragged(nullptr, nullptr, nullptr, 0, nullptr, &results), 0);
    EXPECT_EQ(ma_pool_ragged(nullptr, nullptr, nullptr, 0, nullptr, nullptr), MA_STATUS_INPUT_NOT_GIVEN);
    EXPECT_EQ(ma_pool_option_set(nullptr, "tau2", "reml"), MA_STATUS_INPUT_NOT_GIVEN);
    ma_pool_options options;
    ma_pool_options_init(&options, sizeof options);
    options.tau2 = 7;
    EXPECT_EQ(ma_pool_ragged(nullptr, nullptr, nullptr, 0, &options, &results),
              MA_STATUS_OPTION_VALUE_UNKNOWN);
    options.tau2 = MA_TAU2_DL;
    options.tau2_interval = MA_TAU2_INTERVAL_PROFILE_LIKELIHOOD;
    EXPECT_EQ(ma_pool_ragged(nullptr, nullptr, nullptr, 0, &options, &results),
              MA_STATUS_TAU2_INTERVAL_UNAVAILABLE);
}

TEST(CInterface, EachStatusOfTheHeaderHasASentence)
{
    std::ifstream file(TESTS_DIR "/../meta_analysis/bulk/meta_analysis.h");
    const std::string header{std::istreambuf_iterator<char>(file), {}};
    const std::regex status("MA_STATUS_\\w+ = (\\d+)");
    for (std::sregex_iterator match(header.begin(), header.end(), status), end; match != end; ++match)
        EXPECT_THAT(ma_status_text(std::stoi((*match)[1])), Not(HasSubstr("no meaning"))) << match->str();
    EXPECT_THAT(ma_status_text(17), HasSubstr("no meaning"));
}

TEST(CInterface, NumbersAreReadWithAPointInEveryLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const char* names[] = {"de_DE.UTF-8", "fr_FR.UTF-8", "pt_BR.UTF-8", "ru_RU.UTF-8", "de_DE"};
    if (std::none_of(std::begin(names), std::end(names),
                     [](auto name) { return std::setlocale(LC_ALL, name); }))
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    ma_pool_options options;
    ma_pool_options_init(&options, sizeof options);
    EXPECT_EQ(ma_pool_option_set(&options, "level", "0.9"), 0);
    EXPECT_EQ(ma_pool_option_set(&options, "level", "0,8"), MA_STATUS_OPTION_VALUE_UNKNOWN);
    EXPECT_EQ(options.level, 0.9);
    std::setlocale(LC_ALL, before.c_str());
}

} // namespace
