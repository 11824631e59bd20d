#include "columns.h"
#include "options.h"

#include <meta_analysis.h>
#include <string.h>

#define COEFFICIENTS(name) COLUMN_OF(ma_regression_results, name, REALSXP, 1)
#define INTEGERS(name) COLUMN_OF(ma_regression_results, name, INTSXP, 0)
#define DOUBLES(name) COLUMN_OF(ma_regression_results, name, REALSXP, 0)

static const column_type types[] = {INTEGERS(k),
                                    INTEGERS(left_out),
                                    COEFFICIENTS(coefficient),
                                    COEFFICIENTS(std_error),
                                    COEFFICIENTS(statistic),
                                    COEFFICIENTS(p),
                                    COEFFICIENTS(mlog10p),
                                    COEFFICIENTS(ci_lower),
                                    COEFFICIENTS(ci_upper),
                                    INTEGERS(rank),
                                    DOUBLES(tau2),
                                    DOUBLES(tau2_lower),
                                    DOUBLES(tau2_upper),
                                    DOUBLES(q),
                                    INTEGERS(q_df),
                                    DOUBLES(q_p),
                                    DOUBLES(i2),
                                    DOUBLES(r2),
                                    DOUBLES(dispersion),
                                    DOUBLES(model_statistic),
                                    INTEGERS(model_df1),
                                    INTEGERS(model_df2),
                                    DOUBLES(model_p),
                                    DOUBLES(model_mlog10p),
                                    INTEGERS(status)};

static const column_table table = {types, sizeof types / sizeof types[0]};

static int32_t set_word(void* options, const char* name, const char* word)
{
    return ma_regression_option_set(options, name, word);
}

static ma_regression_options options_of(SEXP list)
{
    ma_regression_options options;
    check_status(ma_regression_options_init(&options, sizeof options));
    const option_target target = {MA_OPTIONS_REGRESSION, &options,         set_word,
                                  &options.level,        &options.threads, NULL};
    set_options(&target, list);
    return options;
}

/* The library has the coefficients of a portion together, R has the sets of all portions: an array between
 * the two for each column of coefficients, NULL for the others. */
static double** arrays_of_coefficients(SEXP list, SEXP names, size_t size)
{
    double** arrays = (double**)R_alloc((size_t)Rf_xlength(list), sizeof(double*));
    for (R_xlen_t i = 0; i < Rf_xlength(list); ++i)
        arrays[i] = type_of(&table, STRING_ELT(names, i))->is_of_coefficients
                        ? (double*)R_alloc(size, sizeof(double))
                        : NULL;
    return arrays;
}

static void point_at_arrays(ma_regression_results* results, SEXP names, double** arrays)
{
    for (R_xlen_t i = 0; i < Rf_xlength(names); ++i)
        if (arrays[i] != NULL)
            *(double**)field_of(results, type_of(&table, STRING_ELT(names, i))) = arrays[i];
}

static void take_coefficients(SEXP list, double** arrays, size_t first, size_t count)
{
    for (R_xlen_t i = 0; i < Rf_xlength(list); ++i) {
        if (arrays[i] == NULL)
            continue;
        SEXP matrix = VECTOR_ELT(list, i);
        const size_t set_count = (size_t)Rf_nrows(matrix);
        const size_t coefficient_count = (size_t)Rf_ncols(matrix);
        mark_missing(arrays[i], coefficient_count * count);
        for (size_t j = 0; j < coefficient_count; ++j)
            memcpy(REAL(matrix) + j * set_count + first, arrays[i] + j * count, count * sizeof(double));
    }
}

static size_t portion_size(size_t study_count, size_t set_count)
{
    size_t size = set_count < most_sets ? set_count : most_sets;
    while (size > 1 && size * study_count > most_studies)
        size /= 2;
    return size;
}

SEXP regress_sets(SEXP effects, SEXP variances, SEXP design, SEXP option_list, SEXP columns)
{
    const ma_regression_options options = options_of(option_list);
    const size_t study_count = (size_t)Rf_nrows(design);
    const size_t set_count = (size_t)Rf_ncols(effects);
    const size_t coefficient_count = (size_t)Rf_ncols(design);
    const size_t portion = portion_size(study_count, set_count);
    const ptrdiff_t rows = (ptrdiff_t)study_count;
    const ma_matrix x = {REAL_RO(design), 1, rows};
    SEXP names = PROTECT(chosen_names(&table, columns));
    SEXP list = PROTECT(allocate_columns(&table, names, set_count, design));
    double** arrays = arrays_of_coefficients(list, names, coefficient_count * portion);
    size_t first = 0;
    do { /* once without sets too: the library looks at the options */
        R_CheckUserInterrupt();
        const size_t count = set_count - first < portion ? set_count - first : portion;
        const ma_matrix y = {REAL_RO(effects) + first * study_count, 1, rows};
        const ma_matrix v = {REAL_RO(variances) + first * study_count, 1, rows};
        ma_regression_results results = {.size = sizeof results};
        point_at_vectors(&results, &table, list, first);
        point_at_arrays(&results, names, arrays);
        check_status(ma_regress_block(y, v, x, study_count, count, coefficient_count, &options, &results));
        mark_missing_in_vectors(&table, list, first, count);
        take_coefficients(list, arrays, first, count);
        first += count;
    } while (first < set_count);
    UNPROTECT(2);
    return list;
}
