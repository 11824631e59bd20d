effect_sizes_binary <- function(treatment_events, treatment_nonevents, control_events, control_nonevents,
                                measure = "odds-ratio", zero_cells = "each", zero_delta = 0.5,
                                drop_double_zero = FALSE, level = 0.95)
{
    groups <- list(treatment_events = treatment_events, treatment_nonevents = treatment_nonevents,
                   control_events = control_events, control_nonevents = control_nonevents)
    if (identical(zero_cells, "all-if-any") && any(vapply(groups, is.matrix, NA)))
        stop("`zero_cells` is \"all-if-any\", which is about the studies of one set, not of a matrix", call. = FALSE)
    effects_of(C_effects_of_tables, groups,
               list(measure = measure, zero_cells = zero_cells, zero_delta = zero_delta,
                    drop_double_zero = on_or_off(drop_double_zero, "drop_double_zero"), level = level))
}

effect_sizes_continuous <- function(treatment_n, treatment_mean, treatment_sd, control_n, control_mean, control_sd,
                                    measure = "cohens-d", equal_variances = FALSE, variance_adjustment = FALSE,
                                    glass_group = "control", level = 0.95)
{
    groups <- list(treatment_n = treatment_n, treatment_mean = treatment_mean, treatment_sd = treatment_sd,
                   control_n = control_n, control_mean = control_mean, control_sd = control_sd)
    effects_of(C_effects_of_means, groups,
               list(measure = measure, equal_variances = on_or_off(equal_variances, "equal_variances"),
                    variance_adjustment = on_or_off(variance_adjustment, "variance_adjustment"),
                    glass_group = glass_group, level = level))
}

# Results in the shape of the data, so that those of matrices are matrices of studies x sets.
effects_of <- function(routine, groups, options)
{
    groups <- Map(as_doubles, groups, names(groups))
    shaped <- groups[lengths(groups) != 1L]
    shape <- if (length(shaped) > 0L) shaped[[1L]] else 1
    for (name in names(shaped))
        if (length(shaped[[name]]) != length(shape) || !identical(dim(shaped[[name]]), dim(shape)))
            stop("`", name, "` has not the shape of `", names(shaped)[1L], "`", call. = FALSE)
    columns <- .Call(routine, groups, as.double(length(shape)), options)
    if (is.matrix(shape))
        columns <- lapply(columns, matrix, nrow(shape), ncol(shape), dimnames = dimnames(shape))
    data_frame(columns)
}
