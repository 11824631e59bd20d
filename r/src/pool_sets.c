#include "columns.h"
#include "options.h"

#include <meta_analysis.h>

#define INTEGERS(name) COLUMN_OF(ma_pool_results, name, INTSXP, 0)
#define DOUBLES(name) COLUMN_OF(ma_pool_results, name, REALSXP, 0)

static const column_type types[] = {
    INTEGERS(k),         INTEGERS(left_out),  DOUBLES(estimate), DOUBLES(std_error), DOUBLES(statistic),
    DOUBLES(p),          DOUBLES(mlog10p),    DOUBLES(ci_lower), DOUBLES(ci_upper),  DOUBLES(tau2),
    DOUBLES(tau2_lower), DOUBLES(tau2_upper), DOUBLES(q),        INTEGERS(q_df),     DOUBLES(q_p),
    DOUBLES(i2),         DOUBLES(pi_lower),   DOUBLES(pi_upper), INTEGERS(status)};

static const column_table table = {types, sizeof types / sizeof types[0]};

/* The sets of a call: one behind the other (offsets), or the columns of a matrix (NULL). */
typedef struct
{
    const double* effects;
    const double* variances;
    const size_t* offsets;
    size_t study_count; /* of a matrix */
    size_t set_count;
} sets_of_call;

static int32_t set_word(void* options, const char* name, const char* word)
{
    return ma_pool_option_set(options, name, word);
}

static ma_pool_options options_of(SEXP list)
{
    ma_pool_options options;
    check_status(ma_pool_options_init(&options, sizeof options));
    const option_target target = {MA_OPTIONS_POOL, &options,         set_word,
                                  &options.level,  &options.threads, NULL};
    set_options(&target, list);
    return options;
}

/* Offsets come as doubles, which hold the lengths of all vectors of R. */
static const size_t* sizes_of(SEXP offsets)
{
    const R_xlen_t count = Rf_xlength(offsets);
    size_t* sizes = (size_t*)R_alloc((size_t)count, sizeof(size_t));
    for (R_xlen_t i = 0; i < count; ++i)
        sizes[i] = (size_t)REAL_ELT(offsets, i);
    return sizes;
}

static sets_of_call sets_of(SEXP effects, SEXP variances, SEXP offsets)
{
    sets_of_call sets = {REAL_RO(effects), REAL_RO(variances), NULL, 0, 0};
    if (offsets == R_NilValue) {
        sets.study_count = (size_t)Rf_nrows(effects);
        sets.set_count = (size_t)Rf_ncols(effects);
    } else {
        sets.offsets = sizes_of(offsets);
        sets.set_count = (size_t)Rf_xlength(offsets) - 1;
    }
    return sets;
}

static size_t studies_of(const sets_of_call* sets, size_t first, size_t count)
{
    return sets->offsets == NULL ? count * sets->study_count
                                 : sets->offsets[first + count] - sets->offsets[first];
}

static size_t portion_from(const sets_of_call* sets, size_t first)
{
    const size_t left = sets->set_count - first;
    size_t count = left < most_sets ? left : most_sets;
    while (count > 1 && studies_of(sets, first, count) > most_studies)
        count /= 2;
    return count;
}

static int32_t pool_portion(const sets_of_call* sets, size_t first, size_t count,
                            const ma_pool_options* options, const ma_pool_results* results)
{
    if (sets->offsets != NULL)
        return ma_pool_ragged(sets->effects, sets->variances, sets->offsets + first, count, options, results);
    const ptrdiff_t rows = (ptrdiff_t)sets->study_count;
    const size_t start = first * sets->study_count;
    const ma_matrix effects = {sets->effects + start, 1, rows};
    const ma_matrix variances = {sets->variances + start, 1, rows};
    return ma_pool_block(effects, variances, sets->study_count, count, options, results);
}

SEXP pool_sets(SEXP effects, SEXP variances, SEXP offsets, SEXP option_list, SEXP columns)
{
    const ma_pool_options options = options_of(option_list);
    const sets_of_call sets = sets_of(effects, variances, offsets);
    SEXP names = PROTECT(chosen_names(&table, columns));
    SEXP list = PROTECT(allocate_columns(&table, names, sets.set_count, R_NilValue));
    size_t first = 0;
    do { /* once without sets too: the library looks at the options */
        R_CheckUserInterrupt();
        const size_t count = portion_from(&sets, first);
        ma_pool_results results = {.size = sizeof results};
        point_at_vectors(&results, &table, list, first);
        check_status(pool_portion(&sets, first, count, &options, &results));
        mark_missing_in_vectors(&table, list, first, count);
        first += count;
    } while (first < sets.set_count);
    UNPROTECT(2);
    return list;
}
