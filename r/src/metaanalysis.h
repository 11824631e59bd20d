#ifndef METAANALYSIS_H
#define METAANALYSIS_H

#define R_NO_REMAP
#include <R_ext/Utils.h>
#include <Rinternals.h>

/* The routines that R calls: init.c registers them, the functions in R/ say what they take. They give the
 * sets to the library in portions, and let the user interrupt between two. All memory is R's, so that nothing
 * is lost when an error or an interrupt leaves by a jump. */
SEXP pool_sets(SEXP effects, SEXP variances, SEXP offsets, SEXP option_list, SEXP columns);
SEXP regress_sets(SEXP effects, SEXP variances, SEXP design, SEXP option_list, SEXP columns);
SEXP effects_of_tables(SEXP groups, SEXP study_count, SEXP option_list);
SEXP effects_of_means(SEXP groups, SEXP study_count, SEXP option_list);
SEXP status_text(SEXP statuses);
SEXP exclusion_text(SEXP exclusions);

/* Limits of a portion: some tenths of a second of work for one thread, and enough for all. */
enum
{
    most_sets = 65536,
    most_studies = 524288
};

#endif
