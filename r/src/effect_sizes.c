#include "columns.h"
#include "options.h"

#include <meta_analysis.h>

#define DOUBLES(name) COLUMN_OF(ma_effect_results, name, REALSXP, 0)

static const column_type types[] = {DOUBLES(effect),    DOUBLES(variance),
                                    DOUBLES(std_error), DOUBLES(ci_lower),
                                    DOUBLES(ci_upper),  COLUMN_OF(ma_effect_results, exclusion, INTSXP, 0)};

static const column_table table = {types, sizeof types / sizeof types[0]};

static int32_t set_table_word(void* options, const char* name, const char* word)
{
    return ma_table_option_set(options, name, word);
}

static int32_t set_means_word(void* options, const char* name, const char* word)
{
    return ma_means_option_set(options, name, word);
}

/* Vector i of the list; a single value is that of all studies. */
static ma_vector vector_of(SEXP groups, R_xlen_t i)
{
    SEXP values = VECTOR_ELT(groups, i);
    const ma_vector vector = {REAL_RO(values), Rf_xlength(values) == 1 ? 0 : 1};
    return vector;
}

static ma_group_summaries summaries_of(SEXP groups, R_xlen_t first)
{
    const ma_group_summaries summaries = {vector_of(groups, first), vector_of(groups, first + 1),
                                          vector_of(groups, first + 2)};
    return summaries;
}

/* The list of columns, not yet filled, and the struct that points at them. */
static SEXP allocate_results(size_t study_count, ma_effect_results* results)
{
    SEXP names = PROTECT(chosen_names(&table, R_NilValue));
    SEXP list = PROTECT(allocate_columns(&table, names, study_count, R_NilValue));
    results->size = sizeof *results;
    point_at_vectors(results, &table, list, 0);
    UNPROTECT(2);
    return list;
}

SEXP effects_of_tables(SEXP groups, SEXP study_count, SEXP option_list)
{
    ma_table_options options;
    check_status(ma_table_options_init(&options, sizeof options));
    const option_target target = {MA_OPTIONS_TABLES, &options, set_table_word,
                                  &options.level,    NULL,     &options.zero_delta};
    set_options(&target, option_list);
    const size_t count = (size_t)Rf_asReal(study_count);
    ma_effect_results results;
    SEXP list = PROTECT(allocate_results(count, &results));
    check_status(ma_effects_of_tables(vector_of(groups, 0), vector_of(groups, 1), vector_of(groups, 2),
                                      vector_of(groups, 3), count, &options, &results));
    mark_missing_in_vectors(&table, list, 0, count);
    UNPROTECT(1);
    return list;
}

SEXP effects_of_means(SEXP groups, SEXP study_count, SEXP option_list)
{
    ma_means_options options;
    check_status(ma_means_options_init(&options, sizeof options));
    const option_target target = {MA_OPTIONS_MEANS, &options, set_means_word, &options.level, NULL, NULL};
    set_options(&target, option_list);
    const size_t count = (size_t)Rf_asReal(study_count);
    ma_effect_results results;
    SEXP list = PROTECT(allocate_results(count, &results));
    check_status(
        ma_effects_of_means(summaries_of(groups, 0), summaries_of(groups, 3), count, &options, &results));
    mark_missing_in_vectors(&table, list, 0, count);
    UNPROTECT(1);
    return list;
}
