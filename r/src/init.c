#include "metaanalysis.h"

#include <R_ext/Rdynload.h>
#include <R_ext/Visibility.h>

#define ROUTINE(name, count)                                                                                 \
    {                                                                                                        \
#name, (DL_FUNC)&name, count                                                                         \
    }

static const R_CallMethodDef routines[] = {ROUTINE(pool_sets, 5),
                                           ROUTINE(regress_sets, 5),
                                           ROUTINE(effects_of_tables, 3),
                                           ROUTINE(effects_of_means, 3),
                                           ROUTINE(status_text, 1),
                                           ROUTINE(exclusion_text, 1),
                                           {NULL, NULL, 0}};

void attribute_visible R_init_metaanalysis(DllInfo* library)
{
    R_registerRoutines(library, NULL, routines, NULL, NULL);
    R_useDynamicSymbols(library, FALSE);
    R_forceSymbols(library, TRUE);
}
