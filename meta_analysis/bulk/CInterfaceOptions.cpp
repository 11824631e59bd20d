#include "meta_analysis/bulk/CInterfaceOptions.h"

#include "meta_analysis/bulk/CInterfaceOption.h"
#include "meta_analysis/bulk/CInterfaceStruct.h"
#include "meta_analysis/settings/MAChoiceNames.h"
#include "meta_analysis/settings/MAEstimators.h"

#include <span>
#include <type_traits>

namespace MA_NAMESPACE {

namespace {

/// The words for estimators; Paule and Mandel's has two.
constexpr auto tau2Words = [] {
    std::array<MAChoice<MAConst::TAU2ESTIMATOR>, tau2Names.size() + 1> words{};
    std::copy(tau2Names.begin(), tau2Names.end(), words.begin());
    words.back() = pauleMandelName;
    return words;
}();

// The options of each struct, and their defaults. The names are those of the fields.

using Pool = ma_pool_options;
constexpr std::array poolOptions{
    OneOf<&Pool::model, modelNames>("model"),
    OneOf<&Pool::tau2, tau2Words>("tau2"),
    OneOf<&Pool::tau2_search, tau2SearchNames>("tau2_search"),
    OneOf<&Pool::knapp_hartung, knappHartungNames>("knapp_hartung"),
    OneOf<&Pool::tau2_interval, tau2IntervalNames>("tau2_interval"),
    OneOf<&Pool::prediction, predictionNames>("prediction"),
    NumberIn<&Pool::level, CBetween0And1>("level"),
    NumberIn<&Pool::null_effect, CAnyNumber>("null_effect"),
    NumberIn<&Pool::tolerance, CPositive>("tolerance"),
    NumberIn<&Pool::max_iterations, CFrom1>("max_iterations"),
    NumberIn<&Pool::max_step_halving, CFrom1>("max_step_halving"),
    NumberIn<&Pool::threads, CFrom0>("threads"),
};
constexpr Pool poolDefaults{
    .size = sizeof(Pool),
    .model = MA_MODEL_RANDOM,
    .tau2 = MA_TAU2_REML,
    .tau2_search = MA_TAU2_SEARCH_GLOBAL,
    .knapp_hartung = MA_KNAPP_HARTUNG_NONE,
    .tau2_interval = MA_TAU2_INTERVAL_Q_PROFILE,
    .prediction = MA_PREDICTION_T_K_MINUS_2,
    .level = 0.95,
    .null_effect = 0.0,
    .tolerance = 1e-6,
    .max_iterations = 100,
    .max_step_halving = 5,
    .threads = 0,
    .reserved = 0,
};

using Regression = ma_regression_options;
constexpr std::array regressionOptions{
    OneOf<&Regression::model, modelNames>("model"),
    OneOf<&Regression::tau2, tau2Words>("tau2"),
    OneOf<&Regression::tau2_search, tau2SearchNames>("tau2_search"),
    OneOf<&Regression::knapp_hartung, knappHartungNames>("knapp_hartung"),
    OneOf<&Regression::tau2_interval, tau2IntervalNames>("tau2_interval"),
    OneOf<&Regression::tests, testNames>("tests"),
    NumberIn<&Regression::level, CBetween0And1>("level"),
    NumberIn<&Regression::tolerance, CPositive>("tolerance"),
    NumberIn<&Regression::max_iterations, CFrom1>("max_iterations"),
    NumberIn<&Regression::max_step_halving, CFrom1>("max_step_halving"),
    NumberIn<&Regression::threads, CFrom0>("threads"),
    OneOf<&Regression::dispersion, switchNames>("dispersion"),
};
constexpr Regression regressionDefaults{
    .size = sizeof(Regression),
    .model = MA_MODEL_RANDOM,
    .tau2 = MA_TAU2_REML,
    .tau2_search = MA_TAU2_SEARCH_GLOBAL,
    .knapp_hartung = MA_KNAPP_HARTUNG_NONE,
    .tau2_interval = MA_TAU2_INTERVAL_Q_PROFILE,
    .tests = MA_TESTS_T,
    .level = 0.95,
    .tolerance = 1e-6,
    .max_iterations = 100,
    .max_step_halving = 5,
    .threads = 0,
    .dispersion = 0,
};

using Tables = ma_table_options;
constexpr std::array tableOptions{
    OneOf<&Tables::measure, tableMeasureNames>("measure"),
    OneOf<&Tables::zero_cells, zeroCellNames>("zero_cells"),
    NumberIn<&Tables::zero_delta, CNotNegative>("zero_delta"),
    NumberIn<&Tables::level, CBetween0And1>("level"),
    OneOf<&Tables::drop_double_zero, switchNames>("drop_double_zero"),
};
constexpr Tables tableDefaults{
    .size = sizeof(Tables),
    .measure = MA_MEASURE_ODDS_RATIO,
    .zero_cells = MA_ZERO_CELLS_EACH,
    .zero_delta = 0.5,
    .level = 0.95,
    .drop_double_zero = 0,
    .reserved = 0,
};

using Means = ma_means_options;
constexpr std::array meansOptions{
    OneOf<&Means::measure, meansMeasureNames>("measure"),
    OneOf<&Means::equal_variances, switchNames>("equal_variances"),
    OneOf<&Means::variance_adjustment, switchNames>("variance_adjustment"),
    OneOf<&Means::glass_group, glassGroupNames>("glass_group"),
    NumberIn<&Means::level, CBetween0And1>("level"),
};
constexpr Means meansDefaults{
    .size = sizeof(Means),
    .measure = MA_MEASURE_COHENS_D,
    .equal_variances = 0,
    .variance_adjustment = 0,
    .glass_group = MA_GROUP_CONTROL,
    .level = 0.95,
};

/// What there is to know of a struct of options.
template <class Options>
struct COptionSet
{
    std::span<const COption<Options>> options;
    const char* names;
    const Options& defaults;
};

constexpr COptionSet<Pool> SetOf(const Pool*)
{
    return {poolOptions, joinedNames<poolOptions>.data(), poolDefaults};
}
constexpr COptionSet<Regression> SetOf(const Regression*)
{
    return {regressionOptions, joinedNames<regressionOptions>.data(), regressionDefaults};
}
constexpr COptionSet<Tables> SetOf(const Tables*)
{
    return {tableOptions, joinedNames<tableOptions>.data(), tableDefaults};
}
constexpr COptionSet<Means> SetOf(const Means*)
{
    return {meansOptions, joinedNames<meansOptions>.data(), meansDefaults};
}

template <class Options>
COptionSet<Options> SetOf()
{
    return SetOf(static_cast<const Options*>(nullptr));
}

/// In a name "-" stands for "_".
bool IsName(std::string_view given, std::string_view name)
{
    return std::equal(given.begin(), given.end(), name.begin(), name.end(),
                      [](char left, char right) { return (left == '-' ? '_' : left) == right; });
}

/// A null pointer when there is none.
template <class Options>
const COption<Options>* OptionOf(std::string_view name)
{
    for (const COption<Options>& option : SetOf<Options>().options)
        if (IsName(name, option.name))
            return &option;
    return nullptr;
}

template <class Options>
std::int32_t Initialise(Options* options, std::size_t size)
{
    if (options == nullptr)
        return MA_STATUS_INPUT_NOT_GIVEN;
    if (!IsSizeOf<Options>(size))
        return MA_STATUS_STRUCT_SIZE_UNKNOWN;
    const std::size_t shared = SharedSize<Options>(size);
    auto* const bytes = reinterpret_cast<unsigned char*>(options);
    std::memcpy(bytes, &SetOf<Options>().defaults, shared);
    std::fill(bytes + shared, bytes + size, static_cast<unsigned char>(0));
    options->size = size;
    return MA_STATUS_OK;
}

/// The option must be in the caller's struct, or its value would be lost.
template <class Options>
std::int32_t SetByName(Options* options, const char* name, const char* value)
{
    if (options == nullptr || name == nullptr || value == nullptr)
        return MA_STATUS_INPUT_NOT_GIVEN;
    Options known = SetOf<Options>().defaults;
    if (const KXStatus status = ReadStruct(*options, known); status.IsError())
        return status.GetCode();
    const COption<Options>* const option = OptionOf<Options>(name);
    if (option == nullptr || option->end(known) > options->size)
        return MA_STATUS_OPTION_UNKNOWN;
    if (!option->store(value, known) || !option->hasValue(known))
        return MA_STATUS_OPTION_VALUE_UNKNOWN;
    std::memcpy(static_cast<void*>(options), &known, SharedSize<Options>(options->size));
    return MA_STATUS_OK;
}

template <class Options>
KXStatus ReadEach(const Options* given, Options& options)
{
    const COptionSet<Options> set = SetOf<Options>();
    options = set.defaults;
    if (given == nullptr)
        return {};
    if (const KXStatus status = ReadStruct(*given, options); status.IsError())
        return status;
    const bool areValid = std::all_of(set.options.begin(), set.options.end(),
                                      [&](const auto& option) { return option.hasValue(options); });
    return areValid ? KXStatus() : KXStatus(MAStatusCode::OPTION_VALUE_UNKNOWN);
}

/// Fields for later versions.
template <class Options>
KXStatus CheckReserved(const Options& options, const KXStatus& status)
{
    const bool isError = status.IsOK() && options.reserved != 0;
    return isError ? KXStatus(MAStatusCode::STRUCT_FIELD_UNKNOWN) : status;
}

template <class Options>
KXStatus CheckTau2Interval(const Options& options, const KXStatus& status)
{
    const bool isError = status.IsOK() && options.model == MA_MODEL_RANDOM &&
                         options.tau2_interval == MA_TAU2_INTERVAL_PROFILE_LIKELIHOOD &&
                         !HasLikelihood(static_cast<MAConst::TAU2ESTIMATOR>(options.tau2));
    return isError ? KXStatus(MAStatusCode::TAU2_INTERVAL_UNAVAILABLE) : status;
}

/// Random effects test against no effect.
KXStatus CheckNullEffect(const Pool& options, const KXStatus& status)
{
    const bool isError = status.IsOK() && options.model == MA_MODEL_RANDOM && options.null_effect != 0.0;
    return isError ? KXStatus(MAStatusCode::OPTION_VALUE_UNKNOWN) : status;
}

template <class Options>
const char* ValuesOf(std::string_view name)
{
    const COption<Options>* const option = OptionOf<Options>(name);
    return option == nullptr ? nullptr : option->values;
}

/// Calls `use` with a null pointer to the struct of that kind; a null pointer when there is none.
template <class Use>
const char* WithKind(std::int32_t kind, Use&& use)
{
    switch (kind) {
    case MA_OPTIONS_POOL:
        return use(static_cast<Pool*>(nullptr));
    case MA_OPTIONS_REGRESSION:
        return use(static_cast<Regression*>(nullptr));
    case MA_OPTIONS_TABLES:
        return use(static_cast<Tables*>(nullptr));
    case MA_OPTIONS_MEANS:
        return use(static_cast<Means*>(nullptr));
    }
    return nullptr;
}

} // namespace

KXStatus ReadOptions(const ma_pool_options* given, ma_pool_options& options)
{
    const KXStatus status = CheckReserved(options, ReadEach(given, options));
    return CheckNullEffect(options, CheckTau2Interval(options, status));
}

KXStatus ReadOptions(const ma_regression_options* given, ma_regression_options& options)
{
    return CheckTau2Interval(options, ReadEach(given, options));
}

KXStatus ReadOptions(const ma_table_options* given, ma_table_options& options)
{
    return CheckReserved(options, ReadEach(given, options));
}

KXStatus ReadOptions(const ma_means_options* given, ma_means_options& options)
{
    return ReadEach(given, options);
}

} // namespace MA_NAMESPACE

using namespace MA_NAMESPACE;

int32_t ma_pool_options_init(ma_pool_options* options, size_t size)
{
    return Initialise(options, size);
}

int32_t ma_pool_option_set(ma_pool_options* options, const char* name, const char* value)
{
    return SetByName(options, name, value);
}

int32_t ma_regression_options_init(ma_regression_options* options, size_t size)
{
    return Initialise(options, size);
}

int32_t ma_regression_option_set(ma_regression_options* options, const char* name, const char* value)
{
    return SetByName(options, name, value);
}

int32_t ma_table_options_init(ma_table_options* options, size_t size)
{
    return Initialise(options, size);
}

int32_t ma_table_option_set(ma_table_options* options, const char* name, const char* value)
{
    return SetByName(options, name, value);
}

int32_t ma_means_options_init(ma_means_options* options, size_t size)
{
    return Initialise(options, size);
}

int32_t ma_means_option_set(ma_means_options* options, const char* name, const char* value)
{
    return SetByName(options, name, value);
}

const char* ma_option_names(int32_t options_kind)
{
    return WithKind(options_kind, [](auto* options) { return SetOf(options).names; });
}

const char* ma_option_values(int32_t options_kind, const char* name)
{
    if (name == nullptr)
        return nullptr;
    return WithKind(options_kind, [name](auto* options) {
        return ValuesOf<std::remove_pointer_t<decltype(options)>>(name);
    });
}
