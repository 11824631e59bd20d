#include "metaanalysis.h"

#include <meta_analysis/bulk/meta_analysis.h>

SEXP status_text(SEXP statuses)
{
    const R_xlen_t count = Rf_xlength(statuses);
    SEXP texts = PROTECT(Rf_allocVector(STRSXP, count));
    for (R_xlen_t i = 0; i < count; ++i) {
        const int status = INTEGER_ELT(statuses, i);
        SET_STRING_ELT(texts, i, status == NA_INTEGER ? NA_STRING : Rf_mkChar(ma_status_text(status)));
    }
    UNPROTECT(1);
    return texts;
}
