#include "columns.h"

#include <math.h>
#include <stdint.h>
#include <string.h>

const column_type* type_of(const column_table* table, SEXP name)
{
    for (R_xlen_t i = 0; i < table->count; ++i)
        if (strcmp(CHAR(name), table->types[i].name) == 0)
            return &table->types[i];
    Rf_error("`columns` has \"%s\", which is no column of the results", CHAR(name));
}

SEXP chosen_names(const column_table* table, SEXP columns)
{
    if (columns != R_NilValue) {
        if (!Rf_isString(columns) || Rf_xlength(columns) == 0)
            Rf_error("`columns` is not a vector of names of columns");
        return columns;
    }
    SEXP names = PROTECT(Rf_allocVector(STRSXP, table->count));
    for (R_xlen_t i = 0; i < table->count; ++i)
        SET_STRING_ELT(names, i, Rf_mkChar(table->types[i].name));
    UNPROTECT(1);
    return names;
}

static SEXP allocate_matrix(size_t set_count, SEXP design)
{
    SEXP matrix = PROTECT(Rf_allocMatrix(REALSXP, (int)set_count, Rf_ncols(design)));
    SEXP names = Rf_getAttrib(design, R_DimNamesSymbol);
    if (names != R_NilValue) {
        SEXP of_columns = PROTECT(Rf_allocVector(VECSXP, 2));
        SET_VECTOR_ELT(of_columns, 1, VECTOR_ELT(names, 1));
        Rf_setAttrib(matrix, R_DimNamesSymbol, of_columns);
        UNPROTECT(1);
    }
    UNPROTECT(1);
    return matrix;
}

SEXP allocate_columns(const column_table* table, SEXP names, size_t set_count, SEXP design)
{
    const R_xlen_t count = Rf_xlength(names);
    SEXP columns = PROTECT(Rf_allocVector(VECSXP, count));
    for (R_xlen_t i = 0; i < count; ++i) {
        const column_type* type = type_of(table, STRING_ELT(names, i));
        SET_VECTOR_ELT(columns, i,
                       type->is_of_coefficients ? allocate_matrix(set_count, design)
                                                : Rf_allocVector(type->type, (R_xlen_t)set_count));
    }
    Rf_setAttrib(columns, R_NamesSymbol, names);
    UNPROTECT(1);
    return columns;
}

void* field_of(void* results, const column_type* type)
{
    return (char*)results + type->offset;
}

/* The type of column i, by its name in the list. */
static const column_type* type_at(const column_table* table, SEXP columns, R_xlen_t i)
{
    return type_of(table, STRING_ELT(Rf_getAttrib(columns, R_NamesSymbol), i));
}

void point_at_vectors(void* results, const column_table* table, SEXP columns, size_t first)
{
    for (R_xlen_t i = 0; i < Rf_xlength(columns); ++i) {
        const column_type* type = type_at(table, columns, i);
        SEXP column = VECTOR_ELT(columns, i);
        if (type->type == INTSXP)
            *(int32_t**)field_of(results, type) = INTEGER(column) + first;
        else if (!type->is_of_coefficients)
            *(double**)field_of(results, type) = REAL(column) + first;
    }
}

void mark_missing(double* values, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (isnan(values[i]))
            values[i] = NA_REAL;
}

void mark_missing_in_vectors(const column_table* table, SEXP columns, size_t first, size_t count)
{
    for (R_xlen_t i = 0; i < Rf_xlength(columns); ++i) {
        const column_type* type = type_at(table, columns, i);
        if (type->type == REALSXP && !type->is_of_coefficients)
            mark_missing(REAL(VECTOR_ELT(columns, i)) + first, count);
    }
}
