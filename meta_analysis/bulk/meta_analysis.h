#ifndef META_ANALYSIS_H
#define META_ANALYSIS_H

/*
 * The C interface of the library: many meta-analyses, or meta-regressions, in one call, and the effect sizes
 * that they pool. C11, and C++ from C++17 on.
 *
 * Sets. A set is the studies of one analysis: effect sizes y and within-study variances v, on the scale of
 * the analysis (logarithms of ratios). A study whose effect size or variance is NaN is not in the set. One
 * that cannot be pooled otherwise (an infinite effect size, a variance that is not positive and finite with a
 * finite inverse) is left out and counted. One set never changes the results of another.
 *
 * Arrays are the caller's, and are not kept. Strides count values, not bytes; they may be negative, and 0
 * repeats a value. A result array must not overlap another array of the call.
 *
 * Statuses. Functions return 0 (MA_STATUS_OK) or the status of the call; after any other, results are not to
 * be read. A result column `status` has 0, or the status of that set alone. `ma_status_text` has the sentence
 * of each.
 *
 * Structs of options and results grow: later versions of the library add fields behind those that are there.
 * The first field is the size that the caller's compiler gave the struct. Fields that the caller does not
 * know have their defaults; a caller that was compiled with a newer header than the library's gets
 * MA_STATUS_STRUCT_FIELD_UNKNOWN if a field that the library does not know is not 0 or a null pointer, and
 * results otherwise.
 *
 * Threads. There is no global state: every function may be called from any thread, at the same time. Results
 * do not depend on the number of threads, to the last bit, nor on the locale. No C++ exception leaves.
 */

#include "meta_analysis/platform/common/Export.h"

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Statuses ---- */

enum
{
    MA_STATUS_OK = 0,

    /* Of a call. */
    MA_STATUS_INPUT_NOT_GIVEN = 460009, /* a null pointer where there must be values, or offsets that fall */
    MA_STATUS_OUT_OF_MEMORY = 460099,
    MA_STATUS_TAU2_INTERVAL_UNAVAILABLE = 460108, /* profile likelihood for estimators but ML and REML */
    MA_STATUS_STRUCT_SIZE_UNKNOWN = 460155,       /* no struct has the size in its first field */
    MA_STATUS_STRUCT_FIELD_UNKNOWN = 460156,      /* a field of a newer header than the library's is set */
    MA_STATUS_OPTION_UNKNOWN = 460157,            /* no option has this name */
    MA_STATUS_OPTION_VALUE_UNKNOWN = 460158,      /* an option cannot have this value */

    /* Errors of a set: its results are NaN, its degrees of freedom 0. */
    MA_STATUS_NO_STUDY_IN_RUN = 460105, /* nothing to pool */
    MA_STATUS_TAU2_FAILED = 460060,     /* tau² could not be estimated */
    MA_STATUS_NO_USABLE_STUDY = 460073, /* nothing to regress */
    MA_STATUS_TOO_FEW_ROWS = 460015,    /* no more studies than coefficients */
    MA_STATUS_ONE_USABLE_STUDY = 460029,

    /* Warnings of a set, which has its results. */
    MA_STATUS_TAU2_DOUBTFUL = 460100, /* tau² is not proved to be what its estimator defines */
    MA_STATUS_AS_MANY_STUDIES_AS_PARAMETERS = 460047, /* no dispersion: taken as 1 */
    MA_STATUS_DISPERSION_NEAR_ZERO = 460048,          /* an exact fit: the dispersion is taken as 1 */
    MA_STATUS_NO_RESIDUAL_DF = 460049                 /* no degrees of freedom for a residual test */
};

/* The sentence of a status, in English; static, never NULL, also for a number that is none. */
META_ANALYSIS_EXPORT const char* ma_status_text(int32_t status);

/* The version of the library, "0.1.0"; static. */
META_ANALYSIS_EXPORT const char* ma_version(void);

/* ---- Values in memory ---- */

/* Values with a stride: value i is values[i * stride]. This struct never changes. */
typedef struct ma_vector
{
    const double* values;
    ptrdiff_t stride;
} ma_vector;

/* Rows and columns of values: value (i, j) is values[i * row_stride + j * column_stride]. This struct never
 * changes. Row by row as in C: strides {columns, 1}; column by column as in Fortran and R: {1, rows}. */
typedef struct ma_matrix
{
    const double* values; /* of the first row and column */
    ptrdiff_t row_stride;
    ptrdiff_t column_stride;
} ma_matrix;

/* ---- Pooling ---- */

enum /* ma_pool_options.model, ma_regression_options.model */
{
    MA_MODEL_FIXED = 0, /* "fixed": all studies have one true effect */
    MA_MODEL_RANDOM = 1 /* "random": the true effects vary with variance tau² */
};

enum /* .tau2: the estimator of the between-study variance */
{
    MA_TAU2_HE = 0,   /* "he": Hedges */
    MA_TAU2_HS = 1,   /* "hs": Hunter and Schmidt */
    MA_TAU2_DL = 2,   /* "dl": DerSimonian and Laird */
    MA_TAU2_SJ = 3,   /* "sj": Sidik and Jonkman */
    MA_TAU2_ML = 4,   /* "ml": maximum likelihood */
    MA_TAU2_REML = 5, /* "reml": restricted maximum likelihood */
    MA_TAU2_EB = 6    /* "eb", "pm": empirical Bayes, which is the estimator of Paule and Mandel */
};

enum /* .tau2_search: how ML, REML and EB find their estimate */
{
    MA_TAU2_SEARCH_SCORING = 0, /* "scoring": Fisher scoring, which can miss the maximum */
    MA_TAU2_SEARCH_GLOBAL = 1   /* "global": the global maximum or the root, proved up to rounding */
};

enum /* .knapp_hartung: the adjustment of random effects after Knapp and Hartung */
{
    MA_KNAPP_HARTUNG_NONE = 0,            /* "none": normal test and interval */
    MA_KNAPP_HARTUNG_ADJUSTED = 1,        /* "adjusted": scaled variance, Student's t */
    MA_KNAPP_HARTUNG_TRUNCATED = 2,       /* "truncated": the scale never below 1 */
    MA_KNAPP_HARTUNG_IF_HETEROGENEOUS = 3 /* "if-heterogeneous": where k > 2 and tau² > 0, else normal */
};

enum /* .tau2_interval */
{
    MA_TAU2_INTERVAL_NONE = 0,              /* "none" */
    MA_TAU2_INTERVAL_Q_PROFILE = 1,         /* "q-profile" */
    MA_TAU2_INTERVAL_PROFILE_LIKELIHOOD = 2 /* "profile-likelihood", for ML and REML */
};

enum /* .prediction: the distribution of the prediction interval */
{
    MA_PREDICTION_T_K_MINUS_2 = 0, /* "t-k-2": Student's t with k - 2 degrees of freedom */
    MA_PREDICTION_T_K_MINUS_1 = 1, /* "t-k-1" */
    MA_PREDICTION_NORMAL = 2       /* "normal" */
};

/* How every set is pooled. `ma_pool_options_init` sets the defaults. The fixed model uses `level` and
 * `null_effect` alone. */
typedef struct ma_pool_options
{
    size_t size;           /* sizeof(ma_pool_options) */
    int32_t model;         /* default MA_MODEL_RANDOM */
    int32_t tau2;          /* default MA_TAU2_REML */
    int32_t tau2_search;   /* default MA_TAU2_SEARCH_GLOBAL */
    int32_t knapp_hartung; /* default MA_KNAPP_HARTUNG_NONE */
    int32_t tau2_interval; /* default MA_TAU2_INTERVAL_Q_PROFILE */
    int32_t prediction;    /* default MA_PREDICTION_T_K_MINUS_2 */
    double level;          /* of intervals, between 0 and 1; default 0.95 */
    double null_effect; /* under the null hypothesis, on the scale of the effects; default 0, the only value
                           for random effects */
    double tolerance;   /* scoring ends below a step of this size, in units of tau²; above 0; default 1e-6 */
    int32_t max_iterations;   /* of scoring, from 1 on; default 100 */
    int32_t max_step_halving; /* of a scoring step that makes tau² negative, from 1 on; default 5 */
    int32_t threads;          /* default 0: one for each processor */
    int32_t reserved;         /* 0 */
} ma_pool_options;

/* Columns of results, an entry a set. NULL is a column that is not wanted; what only unwanted columns need is
 * not computed. What a model does not define is NaN: of the fixed model tau², its limits and the prediction
 * interval; of few studies limits that need more. Without pooled studies, and with MA_STATUS_TAU2_FAILED, all
 * numbers but the counts are NaN. */
typedef struct ma_pool_results
{
    size_t size;       /* sizeof(ma_pool_results) */
    int32_t* k;        /* studies that were pooled */
    int32_t* left_out; /* studies that are not NaN but cannot be pooled */
    double* estimate;  /* sum(w y) / sum(w), w = 1 / (v + tau²) */
    double* std_error; /* 1 / sqrt(sum(w)), scaled by the adjustment after Knapp and Hartung */
    double* statistic; /* z, or t under that adjustment */
    double* p;         /* two-sided */
    double* mlog10p;   /* -log10(p), right also where p underflows */
    double* ci_lower;
    double* ci_upper;
    double* tau2;
    double* tau2_lower;
    double* tau2_upper;
    double* q;        /* Cochran's: sum((y - ȳ)² / v), ȳ the fixed-effect estimate */
    int32_t* q_df;    /* k - 1 */
    double* q_p;      /* of the chi-square test */
    double* i2;       /* a fraction */
    double* pi_lower; /* prediction interval of a new study's true effect */
    double* pi_upper;
    int32_t* status; /* 0, MA_STATUS_NO_STUDY_IN_RUN, _TAU2_FAILED or _TAU2_DOUBTFUL */
} ma_pool_results;

/* Sets the defaults, and the size. `size` is sizeof(ma_pool_options) as the caller's compiler has it. */
META_ANALYSIS_EXPORT int32_t ma_pool_options_init(ma_pool_options* options, size_t size);

/* Sets an option by its name, which is that of the field, and one of the words in quotes above, "on" or "off"
 * for a switch, or a number with a decimal point: ma_pool_option_set(&options, "tau2", "reml"), (...,
 * "level", "0.9"). In names "-" stands for "_". MA_STATUS_OPTION_UNKNOWN, MA_STATUS_OPTION_VALUE_UNKNOWN;
 * nothing is changed then. */
META_ANALYSIS_EXPORT int32_t ma_pool_option_set(ma_pool_options* options, const char* name,
                                                const char* value);

/* Pools `set_count` sets that stand one behind the other: set s has the studies offsets[s] to
 * offsets[s + 1] - 1 of both arrays; there are set_count + 1 offsets, which do not fall. Null options are the
 * defaults. The results are those of the class MARandomEffectModel, or MAContinousFixEffectModel, for each
 * set. */
META_ANALYSIS_EXPORT int32_t ma_pool_ragged(const double* effects, const double* variances,
                                            const size_t* offsets, size_t set_count,
                                            const ma_pool_options* options, const ma_pool_results* results);

/* Pools `set_count` sets over the same studies: matrices of studies (rows) x sets (columns), NaN where a
 * study is not in a set. */
META_ANALYSIS_EXPORT int32_t ma_pool_block(ma_matrix effects, ma_matrix variances, size_t study_count,
                                           size_t set_count, const ma_pool_options* options,
                                           const ma_pool_results* results);

/* ---- Meta-regression ---- */

enum /* ma_regression_options.tests */
{
    MA_TESTS_T = 0,     /* "t": Student's t with k - p degrees of freedom, and F */
    MA_TESTS_NORMAL = 1 /* "normal": standard normal, and chi-square */
};

/* How every set is regressed. `ma_regression_options_init` sets the defaults. */
typedef struct ma_regression_options
{
    size_t size;              /* sizeof(ma_regression_options) */
    int32_t model;            /* default MA_MODEL_RANDOM */
    int32_t tau2;             /* default MA_TAU2_REML */
    int32_t tau2_search;      /* default MA_TAU2_SEARCH_GLOBAL */
    int32_t knapp_hartung;    /* default MA_KNAPP_HARTUNG_NONE; if-heterogeneous: k - p > 1 and tau² > 0 */
    int32_t tau2_interval;    /* default MA_TAU2_INTERVAL_Q_PROFILE */
    int32_t tests;            /* default MA_TESTS_T; the adjustment after Knapp and Hartung takes t always */
    double level;             /* of intervals, between 0 and 1; default 0.95 */
    double tolerance;         /* as for pooling; default 1e-6 */
    int32_t max_iterations;   /* default 100 */
    int32_t max_step_halving; /* default 5 */
    int32_t threads;          /* default 0: one for each processor */
    int32_t dispersion; /* switch: the fixed model scales variances by the dispersion, which is estimated from
                           the residuals; default 0 */
} ma_regression_options;

/* Results; NULL is one that is not wanted. Those of a coefficient have a row for each column of the design
 * and a column for each set: coefficient j of set s is at [j * set_count + s], so that each coefficient is a
 * map over the sets. The others have an entry a set. A coefficient whose column the studies of the set leave
 * redundant (the columns before it, the intercept first, determine it) is NaN. */
typedef struct ma_regression_results
{
    size_t size; /* sizeof(ma_regression_results) */
    /* Of each coefficient and set. */
    double* coefficient;
    double* std_error;
    double* statistic; /* against 0: t, or z */
    double* p;         /* two-sided */
    double* mlog10p;   /* -log10(p), right also where p underflows */
    double* ci_lower;
    double* ci_upper;
    double* covariance; /* of coefficients i and j at [(i * coefficient_count + j) * set_count + s] */
    /* Of each set. */
    int32_t* k;        /* studies that were used */
    int32_t* left_out; /* studies that are not NaN but cannot be used, for a NaN predictor too */
    int32_t* rank;     /* coefficients that are not redundant */
    double* tau2;      /* residual: what the predictors leave; 0 for the fixed model */
    double* tau2_lower;
    double* tau2_upper;
    double* q;     /* residual: sum((y - x'b)² / v), b of the fixed model */
    int32_t* q_df; /* k - rank; the degrees of freedom of t as well */
    double* q_p;
    double* i2;         /* residual, a fraction */
    double* r2;         /* part of tau² that the predictors explain, a fraction; NaN for the fixed model */
    double* dispersion; /* of the fixed model; 1 without it */
    /* Test of all coefficients but the intercept: Wald's chi-square, or F under Knapp and Hartung. */
    double* model_statistic;
    int32_t* model_df1;
    int32_t* model_df2; /* of F; 0 for a chi-square */
    double* model_p;
    double* model_mlog10p;
    /* 0; MA_STATUS_NO_USABLE_STUDY, _TOO_FEW_ROWS, _ONE_USABLE_STUDY, _TAU2_FAILED; or a warning, the first
     * of several: _TAU2_DOUBTFUL, _AS_MANY_STUDIES_AS_PARAMETERS, _DISPERSION_NEAR_ZERO, _NO_RESIDUAL_DF. */
    int32_t* status;
} ma_regression_results;

META_ANALYSIS_EXPORT int32_t ma_regression_options_init(ma_regression_options* options, size_t size);
META_ANALYSIS_EXPORT int32_t ma_regression_option_set(ma_regression_options* options, const char* name,
                                                      const char* value);

/* Regresses each set on one design: y = X b + u + e, Var(u) = tau², Var(e) = v, by least squares with weights
 * 1 / (v + tau²). `design` is X, studies x `coefficient_count`, as it is: the first column that is 1 in every
 * study is the intercept, and none is added. A study with a NaN among its predictors is in no set. Effects
 * and variances are as for `ma_pool_block`; one meta-regression is a call with one set, of which column
 * strides are not used. The results are those of the classes MAREAlgorithm and MAFEAlgorithm for each set. */
META_ANALYSIS_EXPORT int32_t ma_regress_block(ma_matrix effects, ma_matrix variances, ma_matrix design,
                                              size_t study_count, size_t set_count, size_t coefficient_count,
                                              const ma_regression_options* options,
                                              const ma_regression_results* results);

/* ---- Effect sizes ---- */

enum /* Why a study has no effect size that can be pooled. */
{
    MA_EXCLUSION_NONE = 0,
    MA_EXCLUSION_MISSING_VALUE = 1,
    MA_EXCLUSION_NOT_POOLABLE = 2, /* an effect size or variance that is undefined, or a variance of 0 */
    MA_EXCLUSION_NEGATIVE_COUNT = 3,
    MA_EXCLUSION_NO_PERSONS = 5,         /* a table of nobody */
    MA_EXCLUSION_ZERO_CELLS = 6,         /* zero cells in both groups, and no correction */
    MA_EXCLUSION_DROPPED = 7,            /* by drop_double_zero */
    MA_EXCLUSION_GROUP_TOO_SMALL = 8,    /* fewer than two persons */
    MA_EXCLUSION_SPREAD_NOT_POSITIVE = 9 /* a standard deviation of 0 or less */
};

/* The reason in words; static, never NULL. */
META_ANALYSIS_EXPORT const char* ma_exclusion_text(int32_t exclusion);

/* Columns of results, an entry a study, on the scale of the analysis; NULL is a column that is not wanted.
 * What a study does not define is NaN. */
typedef struct ma_effect_results
{
    size_t size; /* sizeof(ma_effect_results) */
    double* effect;
    double* variance;
    double* std_error;
    double* ci_lower; /* effect -+ z std_error */
    double* ci_upper;
    int32_t* exclusion; /* 0, or why the study cannot be pooled */
} ma_effect_results;

enum /* ma_table_options.measure */
{
    MA_MEASURE_ODDS_RATIO = 0,     /* "odds-ratio": log(ad / (bc)), variance 1/a + 1/b + 1/c + 1/d */
    MA_MEASURE_PETO = 1,           /* "peto": (a - E) / V, variance 1/V, E and V hypergeometric */
    MA_MEASURE_RISK_RATIO = 2,     /* "risk-ratio": log((a/(a+b)) / (c/(c+d))) */
    MA_MEASURE_RISK_DIFFERENCE = 3 /* "risk-difference": a/(a+b) - c/(c+d) */
};

enum /* ma_table_options.zero_cells: which tables receive the constant in all four cells */
{
    MA_ZERO_CELLS_EACH = 0,       /* "each": those with a zero cell */
    MA_ZERO_CELLS_ALL_IF_ANY = 1, /* "all-if-any": all, when a study has a zero cell */
    MA_ZERO_CELLS_ALL = 2,        /* "all" */
    MA_ZERO_CELLS_NONE = 3        /* "none" */
};

typedef struct ma_table_options
{
    size_t size;              /* sizeof(ma_table_options) */
    int32_t measure;          /* default MA_MEASURE_ODDS_RATIO */
    int32_t zero_cells;       /* default MA_ZERO_CELLS_EACH */
    double zero_delta;        /* the constant, not below 0; default 0.5 */
    double level;             /* of intervals, between 0 and 1; default 0.95 */
    int32_t drop_double_zero; /* switch: drops tables without events, or without non-events, in both groups;
                                 default 0 */
    int32_t reserved;         /* 0 */
} ma_table_options;

META_ANALYSIS_EXPORT int32_t ma_table_options_init(ma_table_options* options, size_t size);
META_ANALYSIS_EXPORT int32_t ma_table_option_set(ma_table_options* options, const char* name,
                                                 const char* value);

/* Effect sizes of 2x2 tables of a treatment and a control group: events a, non-events b; events c, non-events
 * d. Counts need not be whole numbers. */
META_ANALYSIS_EXPORT int32_t ma_effects_of_tables(ma_vector treatment_events, ma_vector treatment_non_events,
                                                  ma_vector control_events, ma_vector control_non_events,
                                                  size_t study_count, const ma_table_options* options,
                                                  const ma_effect_results* results);

enum /* ma_means_options.measure */
{
    MA_MEASURE_MEAN_DIFFERENCE = 0, /* "mean-difference" */
    MA_MEASURE_COHENS_D = 1,        /* "cohens-d": difference / pooled standard deviation */
    MA_MEASURE_HEDGES_G = 2,        /* "hedges-g": d J(N - 2), J by gamma functions */
    MA_MEASURE_GLASS_DELTA = 3      /* "glass-delta": difference / standard deviation of glass_group */
};

enum /* ma_means_options.glass_group */
{
    MA_GROUP_TREATMENT = 0, /* "treatment" */
    MA_GROUP_CONTROL = 1    /* "control" */
};

/* The variances that the options choose are in docs/methods.md. */
typedef struct ma_means_options
{
    size_t size;                 /* sizeof(ma_means_options) */
    int32_t measure;             /* default MA_MEASURE_COHENS_D */
    int32_t equal_variances;     /* switch: pools the variances of a mean difference; default 0 */
    int32_t variance_adjustment; /* switch: N - 2 (d), N - 3.94 (g) for N in the variance; default 0 */
    int32_t glass_group;         /* default MA_GROUP_CONTROL */
    double level;                /* of intervals, between 0 and 1; default 0.95 */
} ma_means_options;

META_ANALYSIS_EXPORT int32_t ma_means_options_init(ma_means_options* options, size_t size);
META_ANALYSIS_EXPORT int32_t ma_means_option_set(ma_means_options* options, const char* name,
                                                 const char* value);

/* Sizes (persons), means and standard deviations of two groups. */
typedef struct ma_group_summaries
{
    ma_vector sizes;
    ma_vector means;
    ma_vector std_devs;
} ma_group_summaries;

/* Effect sizes of two groups' means, treatment less control. */
META_ANALYSIS_EXPORT int32_t ma_effects_of_means(ma_group_summaries treatment, ma_group_summaries control,
                                                 size_t study_count, const ma_means_options* options,
                                                 const ma_effect_results* results);

/* ---- What there is to choose from, for messages ---- */

enum
{
    MA_OPTIONS_POOL = 0,
    MA_OPTIONS_REGRESSION = 1,
    MA_OPTIONS_TABLES = 2,
    MA_OPTIONS_MEANS = 3
};

/* The names of the options of a struct, "model, tau2, ..."; static. NULL for an unknown kind. */
META_ANALYSIS_EXPORT const char* ma_option_names(int32_t options_kind);

/* The values of an option, "reml, he, ..." or "a number between 0 and 1"; static. NULL for an unknown option.
 */
META_ANALYSIS_EXPORT const char* ma_option_values(int32_t options_kind, const char* name);

#ifdef __cplusplus
}
#endif

#endif
