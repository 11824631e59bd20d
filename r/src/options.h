#ifndef OPTIONS_H
#define OPTIONS_H

#include "metaanalysis.h"

#include <stdint.h>

/* The options of one kind of call: how a word is set, and where the numbers are. */
typedef struct
{
    int32_t kind; /* MA_OPTIONS_POOL, ... */
    void* options;
    int32_t (*set_word)(void* options, const char* name, const char* word);
    double* level;
    int32_t* threads;   /* NULL without such an option */
    double* zero_delta; /* NULL without such an option */
} option_target;

/* Sets the options from a named list of words and of the numbers `level`, `threads` and `zero_delta`. An
 * error names the option, and says what it can be. */
void set_options(const option_target* target, SEXP list);

/* Ends the call with the sentence of the status, unless it is 0. */
void check_status(int32_t status);

#endif
