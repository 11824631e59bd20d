/* A host in C: pools three measures of 13 trials of BCG vaccination against tuberculosis in one call, and
 * regresses one of them on the latitude. Data: Colditz et al. (1994), JAMA 271, 698-702. */

#include <math.h>
#include <meta_analysis.h>
#include <stdio.h>

enum
{
    STUDIES = 13,
    COUNTS = 4, /* cases and healthy, vaccinated; cases and healthy, not vaccinated */
    MEASURES = 3,
    COEFFICIENTS = 2 /* intercept and latitude */
};

static const double tables[STUDIES][COUNTS] = {
    {4, 119, 11, 128},     {6, 300, 29, 274},      {3, 228, 11, 209},        {62, 13536, 248, 12619},
    {33, 5036, 47, 5761},  {180, 1361, 372, 1079}, {8, 2537, 10, 619},       {505, 87886, 499, 87892},
    {29, 7470, 45, 7232},  {17, 1699, 65, 1600},   {186, 50448, 141, 27197}, {5, 2493, 3, 2338},
    {27, 16886, 29, 17825}};

static const double latitudes[STUDIES] = {44, 55, 42, 52, 13, 44, 19, 13, 27, 42, 18, 33, 33};

static const char* const measures[MEASURES] = {"odds-ratio", "risk-ratio", "risk-difference"};

/* Says what went wrong, and whether anything did. */
static int failed(const char* what, int32_t status)
{
    if (status != MA_STATUS_OK)
        fprintf(stderr, "%s: %s\n", what, ma_status_text(status));
    return status != MA_STATUS_OK;
}

/* Effect sizes of one measure, with their variances; ratios as logarithms. */
static int compute_effects(const char* measure, double* effects, double* variances)
{
    /* A column of the counts: its first value, and how far apart its values are. */
    const ma_vector treated_cases = {&tables[0][0], COUNTS};
    const ma_vector treated_healthy = {&tables[0][1], COUNTS};
    const ma_vector control_cases = {&tables[0][2], COUNTS};
    const ma_vector control_healthy = {&tables[0][3], COUNTS};

    ma_table_options options;
    ma_table_options_init(&options, sizeof options);
    if (failed(measure, ma_table_option_set(&options, "measure", measure)))
        return 1;

    const ma_effect_results results = {.size = sizeof results, .effect = effects, .variance = variances};
    return failed(measure, ma_effects_of_tables(treated_cases, treated_healthy, control_cases,
                                                control_healthy, STUDIES, &options, &results));
}

static int pool(ma_matrix effects, ma_matrix variances)
{
    ma_pool_options options;
    ma_pool_options_init(&options, sizeof options);
    if (failed("Options", ma_pool_option_set(&options, "tau2", "reml")))
        return 1;

    /* Only the columns that are named are computed. */
    double estimate[MEASURES], lower[MEASURES], upper[MEASURES];
    int32_t status[MEASURES];
    const ma_pool_results results = {
        .size = sizeof results, .estimate = estimate, .ci_lower = lower, .ci_upper = upper, .status = status};
    if (failed("Pooling", ma_pool_block(effects, variances, STUDIES, MEASURES, &options, &results)))
        return 1;

    for (int i = 0; i < MEASURES; ++i) {
        if (failed(measures[i], status[i]))
            return 1;
        const int is_ratio = i < 2;
        printf("%s: %.4f, 95%% interval %.4f to %.4f\n", measures[i],
               is_ratio ? exp(estimate[i]) : estimate[i], is_ratio ? exp(lower[i]) : lower[i],
               is_ratio ? exp(upper[i]) : upper[i]);
    }
    return 0;
}

/* One meta-regression is a block of one set. */
static int regress(ma_matrix effects, ma_matrix variances)
{
    double design[STUDIES][COEFFICIENTS];
    for (int i = 0; i < STUDIES; ++i) {
        design[i][0] = 1;
        design[i][1] = latitudes[i];
    }
    const ma_matrix x = {&design[0][0], COEFFICIENTS, 1};

    double coefficient[COEFFICIENTS], std_error[COEFFICIENTS];
    const ma_regression_results results = {
        .size = sizeof results, .coefficient = coefficient, .std_error = std_error};
    if (failed("Regression",
               ma_regress_block(effects, variances, x, STUDIES, 1, COEFFICIENTS, NULL, &results)))
        return 1;
    printf("log risk ratio by latitude: %.4f, standard error %.4f\n", coefficient[1], std_error[1]);
    return 0;
}

int main(void)
{
    /* A row for each measure, which is a set of its own. */
    double effects[MEASURES][STUDIES];
    double variances[MEASURES][STUDIES];
    for (int i = 0; i < MEASURES; ++i)
        if (compute_effects(measures[i], effects[i], variances[i]))
            return 1;

    /* Studies are the rows of the library, and sets the columns: here they lie the other way. */
    const ma_matrix y = {&effects[0][0], 1, STUDIES};
    const ma_matrix v = {&variances[0][0], 1, STUDIES};
    if (pool(y, v))
        return 1;

    const ma_matrix log_risk_ratios = {effects[1], 1, STUDIES};
    const ma_matrix their_variances = {variances[1], 1, STUDIES};
    return regress(log_risk_ratios, their_variances);
}
