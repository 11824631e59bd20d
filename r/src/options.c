#include "options.h"

#include <limits.h>
#include <math.h>
#include <meta_analysis.h>
#include <string.h>

static void NORET fail_option(const option_target* target, const char* name, const char* one_of)
{
    Rf_error("`%s` is not %s%s", name, one_of, ma_option_values(target->kind, name));
}

static void set_word(const option_target* target, const char* name, SEXP value)
{
    const int is_word = Rf_isString(value) && Rf_xlength(value) == 1 && STRING_ELT(value, 0) != NA_STRING;
    if (!is_word || target->set_word(target->options, name, CHAR(STRING_ELT(value, 0))) != MA_STATUS_OK)
        fail_option(target, name, "one of ");
}

/* NaN for what is not one number, which is in no range. */
static double single_number(SEXP value)
{
    return Rf_isNumeric(value) && Rf_xlength(value) == 1 ? Rf_asReal(value) : R_NaN;
}

static void set_level(const option_target* target, SEXP value)
{
    const double level = single_number(value);
    if (!(level > 0 && level < 1))
        fail_option(target, "level", "");
    *target->level = level;
}

static void set_threads(const option_target* target, SEXP value)
{
    const double threads = single_number(value);
    if (!(threads >= 0 && threads <= INT_MAX && threads == floor(threads)))
        fail_option(target, "threads", "");
    *target->threads = (int32_t)threads;
}

static void set_zero_delta(const option_target* target, SEXP value)
{
    const double delta = single_number(value);
    if (!(delta >= 0 && R_FINITE(delta)))
        fail_option(target, "zero_delta", "");
    *target->zero_delta = delta;
}

void set_options(const option_target* target, SEXP list)
{
    SEXP names = Rf_getAttrib(list, R_NamesSymbol);
    for (R_xlen_t i = 0; i < Rf_xlength(list); ++i) {
        const char* name = CHAR(STRING_ELT(names, i));
        SEXP value = VECTOR_ELT(list, i);
        if (strcmp(name, "level") == 0)
            set_level(target, value);
        else if (strcmp(name, "threads") == 0)
            set_threads(target, value);
        else if (strcmp(name, "zero_delta") == 0)
            set_zero_delta(target, value);
        else
            set_word(target, name, value);
    }
}

void check_status(int32_t status)
{
    if (status == MA_STATUS_TAU2_INTERVAL_UNAVAILABLE)
        Rf_error("`tau2_interval`: %s", ma_status_text(status));
    if (status != MA_STATUS_OK)
        Rf_error("%s", ma_status_text(status));
}
