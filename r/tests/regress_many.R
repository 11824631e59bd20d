library(metaanalysis)

close_to <- function(x, y) all(abs(x - y) <= 1e-7 * (1 + abs(y)))
message_of <- function(expression) tryCatch({ expression; "" }, error = conditionMessage)

set.seed(21)
sets <- 8
design <- cbind(intercept = 1, dose = c(1, 2, 5, 3, 8, 4, 6, 2, 9, 5), female = runif(10))
variances <- matrix(runif(10 * sets, 0.01, 0.1), 10)
effects <- matrix(rnorm(10 * sets, 0.1 * design[, "dose"], sqrt(variances + rep(c(0, 0.2), each = 10))), 10)
effects[1:4, 1] <- NA
results <- regress_many(effects, variances, design, knapp_hartung = "adjusted")
each <- lapply(1:sets, function(set)
    regress_many(effects[, set], variances[, set], design, knapp_hartung = "adjusted"))
stopifnot(identical(do.call(rbind, each), results), identical(colnames(results$p), colnames(design)),
          identical(regress_many(effects, variances, design, knapp_hartung = "adjusted", threads = 3), results),
          identical(regress_many(effects, variances, design, columns = c("tau2", "k")), results[c("tau2", "k")]),
          regress_many(effects[1:3, ], variances[1:3, ], design[1:3, ])$status != 0,
          grepl("`design` is not a matrix with a row", message_of(regress_many(effects, variances, design[-1, ]))),
          grepl("`tests` is not one of t", message_of(regress_many(effects, variances, design, tests = "F"))),
          grepl("`dispersion` is neither", message_of(regress_many(effects, variances, design, dispersion = NA))))

# The sets again and again, in more than one portion.
many <- rep(1:sets, length.out = 70001)
stopifnot(identical(regress_many(effects[, many], variances[, many], design)$coefficient[70000:70001, ],
                    regress_many(effects[, many[70000:70001]], variances[, many[70000:70001]], design)$coefficient))

if (requireNamespace("metafor", quietly = TRUE)) {
    figures_of <- function(set) {
        fit <- metafor::rma(effects[, set], variances[, set], mods = design[, -1], method = "REML", test = "knha",
                            control = list(maxiter = 10000, stepadj = 0.5, threshold = 1e-13))
        interval <- confint(fit, control = list(tol = 1e-12))$random[1, 2:3]
        list(k = fit$k, coefficient = fit$b[, 1], std_error = fit$se, statistic = fit$zval, p = fit$pval,
             ci_lower = fit$ci.lb, ci_upper = fit$ci.ub, tau2 = fit$tau2, tau2_lower = interval[[1]],
             tau2_upper = interval[[2]], q = fit$QE, q_p = fit$QEp, i2 = fit$I2 / 100, r2 = fit$R2 / 100,
             model_statistic = fit$QM, model_p = fit$QMp, model_df2 = fit$QMdf[2])
    }
    theirs <- suppressWarnings(lapply(1:sets, figures_of))
    for (name in names(theirs[[1]]))
        stopifnot(close_to(as.matrix(results[[name]]), do.call(rbind, lapply(theirs, `[[`, name))))
}
