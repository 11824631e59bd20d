#include "meta_analysis/bulk/meta_analysis.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cstddef>
#include <type_traits>

// What the C interface calls by names of its own has the numbers that the library has. A struct ends with a
// field and not with padding, which a later version would read a field from that the caller does not know.

namespace MA_NAMESPACE {

namespace {

static_assert(std::is_same_v<int32_t, int>);

/// One argument each, so that enumerations of both languages can be compared.
constexpr bool AreEqual(int left, int right)
{
    return left == right;
}

static_assert(AreEqual(MA_STATUS_INPUT_NOT_GIVEN, MAStatusCode::INPUT_NOT_GIVEN));
static_assert(AreEqual(MA_STATUS_OUT_OF_MEMORY, MAStatusCode::OUT_OF_MEMORY));
static_assert(AreEqual(MA_STATUS_TAU2_INTERVAL_UNAVAILABLE, MAStatusCode::TAU2_INTERVAL_UNAVAILABLE));
static_assert(AreEqual(MA_STATUS_STRUCT_SIZE_UNKNOWN, MAStatusCode::STRUCT_SIZE_UNKNOWN));
static_assert(AreEqual(MA_STATUS_STRUCT_FIELD_UNKNOWN, MAStatusCode::STRUCT_FIELD_UNKNOWN));
static_assert(AreEqual(MA_STATUS_OPTION_UNKNOWN, MAStatusCode::OPTION_UNKNOWN));
static_assert(AreEqual(MA_STATUS_OPTION_VALUE_UNKNOWN, MAStatusCode::OPTION_VALUE_UNKNOWN));
static_assert(AreEqual(MA_STATUS_NO_STUDY_IN_RUN, MAStatusCode::NO_STUDY_IN_RUN));
static_assert(AreEqual(MA_STATUS_TAU2_FAILED, MAStatusCode::TAU2_FAILED));
static_assert(AreEqual(MA_STATUS_NO_USABLE_STUDY, MAStatusCode::NO_USABLE_STUDY));
static_assert(AreEqual(MA_STATUS_TOO_FEW_ROWS, MAStatusCode::TOO_FEW_ROWS));
static_assert(AreEqual(MA_STATUS_ONE_USABLE_STUDY, MAStatusCode::ONE_USABLE_STUDY));
static_assert(AreEqual(MA_STATUS_TAU2_DOUBTFUL, MAStatusCode::TAU2_DOUBTFUL));
static_assert(AreEqual(MA_STATUS_AS_MANY_STUDIES_AS_PARAMETERS, MAStatusCode::AS_MANY_STUDIES_AS_PARAMETERS));
static_assert(AreEqual(MA_STATUS_DISPERSION_NEAR_ZERO, MAStatusCode::DISPERSION_NEAR_ZERO));
static_assert(AreEqual(MA_STATUS_NO_RESIDUAL_DF, MAStatusCode::NO_RESIDUAL_DF));
static_assert(AreEqual(MA_MODEL_FIXED, MAConst::MODEL_FIXED));
static_assert(AreEqual(MA_MODEL_RANDOM, MAConst::MODEL_RANDOM));
static_assert(AreEqual(MA_TAU2_HE, MAConst::TAU2_HE));
static_assert(AreEqual(MA_TAU2_HS, MAConst::TAU2_HS));
static_assert(AreEqual(MA_TAU2_DL, MAConst::TAU2_DL));
static_assert(AreEqual(MA_TAU2_SJ, MAConst::TAU2_SJ));
static_assert(AreEqual(MA_TAU2_ML, MAConst::TAU2_ML));
static_assert(AreEqual(MA_TAU2_REML, MAConst::TAU2_REML));
static_assert(AreEqual(MA_TAU2_EB, MAConst::TAU2_EB));
static_assert(AreEqual(MA_TAU2_SEARCH_SCORING, MAConst::TAU2_SEARCH_SCORING));
static_assert(AreEqual(MA_TAU2_SEARCH_GLOBAL, MAConst::TAU2_SEARCH_GLOBAL));
static_assert(AreEqual(MA_KNAPP_HARTUNG_NONE, MAConst::KNAPP_HARTUNG_NONE));
static_assert(AreEqual(MA_KNAPP_HARTUNG_ADJUSTED, MAConst::KNAPP_HARTUNG_ADJUSTED));
static_assert(AreEqual(MA_KNAPP_HARTUNG_TRUNCATED, MAConst::KNAPP_HARTUNG_TRUNCATED));
static_assert(AreEqual(MA_KNAPP_HARTUNG_IF_HETEROGENEOUS, MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS));
static_assert(AreEqual(MA_TAU2_INTERVAL_NONE, MAConst::TAU2_INTERVAL_NONE));
static_assert(AreEqual(MA_TAU2_INTERVAL_Q_PROFILE, MAConst::TAU2_INTERVAL_Q_PROFILE));
static_assert(AreEqual(MA_TAU2_INTERVAL_PROFILE_LIKELIHOOD, MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD));
static_assert(AreEqual(MA_PREDICTION_T_K_MINUS_2, MAConst::PREDICTION_T_K_MINUS_2));
static_assert(AreEqual(MA_PREDICTION_T_K_MINUS_1, MAConst::PREDICTION_T_K_MINUS_1));
static_assert(AreEqual(MA_PREDICTION_NORMAL, MAConst::PREDICTION_NORMAL));
static_assert(AreEqual(MA_TESTS_T, MAConst::TEST_STUDENT_T));
static_assert(AreEqual(MA_TESTS_NORMAL, MAConst::TEST_STANDARD_NORMAL));
static_assert(AreEqual(MA_EXCLUSION_NONE, MAConst::EXCLUSION_NONE));
static_assert(AreEqual(MA_EXCLUSION_MISSING_VALUE, MAConst::EXCLUSION_MISSING_VALUE));
static_assert(AreEqual(MA_EXCLUSION_NOT_POOLABLE, MAConst::EXCLUSION_NOT_POOLABLE));
static_assert(AreEqual(MA_EXCLUSION_NEGATIVE_COUNT, MAConst::EXCLUSION_NEGATIVE_COUNT));
static_assert(AreEqual(MA_EXCLUSION_NO_PERSONS, MAConst::EXCLUSION_NO_PERSONS));
static_assert(AreEqual(MA_EXCLUSION_ZERO_CELLS, MAConst::EXCLUSION_ZERO_CELLS));
static_assert(AreEqual(MA_EXCLUSION_DROPPED, MAConst::EXCLUSION_DROPPED));
static_assert(AreEqual(MA_EXCLUSION_GROUP_TOO_SMALL, MAConst::EXCLUSION_GROUP_TOO_SMALL));
static_assert(AreEqual(MA_EXCLUSION_SPREAD_NOT_POSITIVE, MAConst::EXCLUSION_SPREAD_NOT_POSITIVE));
static_assert(AreEqual(MA_MEASURE_ODDS_RATIO, MAConst::BIN_ODDS_RATIO));
static_assert(AreEqual(MA_MEASURE_PETO, MAConst::BIN_PETO_ODDS_RATIO));
static_assert(AreEqual(MA_MEASURE_RISK_RATIO, MAConst::BIN_RISK_RATIO));
static_assert(AreEqual(MA_MEASURE_RISK_DIFFERENCE, MAConst::BIN_RISK_DIFFERENCE));
static_assert(AreEqual(MA_ZERO_CELLS_EACH, MAConst::ZERO_ADJUST_EACH));
static_assert(AreEqual(MA_ZERO_CELLS_ALL_IF_ANY, MAConst::ZERO_ADJUST_ALL_IF_ANY));
static_assert(AreEqual(MA_ZERO_CELLS_ALL, MAConst::ZERO_ADJUST_ALL));
static_assert(AreEqual(MA_ZERO_CELLS_NONE, MAConst::ZERO_ADJUST_NONE));
static_assert(AreEqual(MA_MEASURE_MEAN_DIFFERENCE, MAConst::CONT_MEAN_DIFFERENCE));
static_assert(AreEqual(MA_MEASURE_COHENS_D, MAConst::CONT_COHENS_D));
static_assert(AreEqual(MA_MEASURE_HEDGES_G, MAConst::CONT_HEDGES_G));
static_assert(AreEqual(MA_MEASURE_GLASS_DELTA, MAConst::CONT_GLASS_DELTA));
static_assert(AreEqual(MA_GROUP_TREATMENT, MAConst::GROUP_TREATMENT));
static_assert(AreEqual(MA_GROUP_CONTROL, MAConst::GROUP_CONTROL));

static_assert(offsetof(ma_pool_options, reserved) + sizeof(ma_pool_options::reserved) ==
              sizeof(ma_pool_options));
static_assert(offsetof(ma_pool_results, status) + sizeof(ma_pool_results::status) == sizeof(ma_pool_results));
static_assert(offsetof(ma_regression_options, dispersion) + sizeof(ma_regression_options::dispersion) ==
              sizeof(ma_regression_options));
static_assert(offsetof(ma_regression_results, status) + sizeof(ma_regression_results::status) ==
              sizeof(ma_regression_results));
static_assert(offsetof(ma_table_options, reserved) + sizeof(ma_table_options::reserved) ==
              sizeof(ma_table_options));
static_assert(offsetof(ma_effect_results, exclusion) + sizeof(ma_effect_results::exclusion) ==
              sizeof(ma_effect_results));
static_assert(offsetof(ma_means_options, level) + sizeof(ma_means_options::level) ==
              sizeof(ma_means_options));

} // namespace

} // namespace MA_NAMESPACE
