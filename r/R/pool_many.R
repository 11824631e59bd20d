pool_many <- function(effects, variances, tau2 = "reml", knapp_hartung = "none", model = "random",
                      level = 0.95, prediction = "t-k-2", tau2_interval = "q-profile",
                      groups = NULL, threads = 0, columns = NULL)
{
    sets <- arrange_sets(effects, variances, groups)
    options <- list(model = model, tau2 = tau2, knapp_hartung = knapp_hartung, tau2_interval = tau2_interval,
                    prediction = prediction, level = level, threads = threads)
    results <- .Call(C_pool_sets, sets$effects, sets$variances, sets$offsets, options, unique(columns))
    data_frame(c(sets$labels, results))
}
