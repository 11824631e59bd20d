#include "metaanalysis.h"

#include <R_ext/Rdynload.h>
#include <R_ext/Visibility.h>

static const R_CallMethodDef routines[] = {{"pool_sets", (DL_FUNC)&pool_sets, 5},
                                           {"regress_sets", (DL_FUNC)&regress_sets, 5},
                                           {"status_text", (DL_FUNC)&status_text, 1},
                                           {NULL, NULL, 0}};

void attribute_visible R_init_metaanalysis(DllInfo* library)
{
    R_registerRoutines(library, NULL, routines, NULL, NULL);
    R_useDynamicSymbols(library, FALSE);
    R_forceSymbols(library, TRUE);
}
