regress_many <- function(effects, variances, design, tau2 = "reml", knapp_hartung = "none", model = "random",
                         tests = "t", dispersion = FALSE, level = 0.95, tau2_interval = "q-profile",
                         threads = 0, columns = NULL)
{
    if (!is.matrix(effects) && !is.matrix(variances)) { # one set
        effects <- as.matrix(effects)
        variances <- as.matrix(variances)
    }
    sets <- sets_of_matrices(effects, variances)
    if (!is.matrix(design) || nrow(design) != nrow(effects))
        stop("`design` is not a matrix with a row for each of the ", nrow(effects), " studies", call. = FALSE)
    options <- list(model = model, tau2 = tau2, knapp_hartung = knapp_hartung, tau2_interval = tau2_interval,
                    tests = tests, dispersion = on_or_off(dispersion, "dispersion"), level = level,
                    threads = threads)
    results <- .Call(C_regress_sets, sets$effects, sets$variances, as_doubles(design, "design"), options,
                     unique(columns))
    data_frame(c(sets$labels, results))
}
