#ifndef COLUMNS_H
#define COLUMNS_H

#include "metaanalysis.h"

#include <stddef.h>

/* A column of results: its name, its type in R, whether it has a value for each coefficient of a set, and
 * where the struct of results has its array. */
typedef struct
{
    const char* name;
    SEXPTYPE type;
    int is_of_coefficients;
    size_t offset;
} column_type;

/* The row of a table for a field of a struct of results. */
#define COLUMN_OF(results, field, type, is_of_coefficients)                                                  \
    {                                                                                                        \
#field, type, is_of_coefficients, offsetof(results, field)                                           \
    }

typedef struct
{
    const column_type* types;
    R_xlen_t count;
} column_table;

/* The type of the column of this name; an error names `columns`. */
const column_type* type_of(const column_table* table, SEXP name);

/* The names that the caller chose in `columns`, or all of them for NULL. */
SEXP chosen_names(const column_table* table, SEXP columns);

/* A list of columns with these names, not yet filled: vectors of sets, and matrices of sets x coefficients
 * with the names of the columns of `design` (NULL where no column is of coefficients). */
SEXP allocate_columns(const column_table* table, SEXP names, size_t set_count, SEXP design);

/* Where the struct of results has the array of this column. */
void* field_of(void* results, const column_type* type);

/* Points the struct of results at the vectors of sets, from set `first` on. */
void point_at_vectors(void* results, const column_table* table, SEXP columns, size_t first);

/* What is not defined is NaN in the library, and NA in R. */
void mark_missing(double* values, size_t count);

/* `mark_missing` of all vectors of sets, from set `first` on. */
void mark_missing_in_vectors(const column_table* table, SEXP columns, size_t first, size_t count);

#endif
