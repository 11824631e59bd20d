#include "metaanalysis.h"

#include <meta_analysis.h>

static SEXP texts_of(SEXP codes, const char* (*text_of)(int32_t code))
{
    const R_xlen_t count = Rf_xlength(codes);
    SEXP texts = PROTECT(Rf_allocVector(STRSXP, count));
    for (R_xlen_t i = 0; i < count; ++i) {
        const int code = INTEGER_ELT(codes, i);
        SET_STRING_ELT(texts, i, code == NA_INTEGER ? NA_STRING : Rf_mkChar(text_of(code)));
    }
    UNPROTECT(1);
    return texts;
}

SEXP status_text(SEXP statuses)
{
    return texts_of(statuses, ma_status_text);
}

SEXP exclusion_text(SEXP exclusions)
{
    return texts_of(exclusions, ma_exclusion_text);
}
