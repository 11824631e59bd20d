library(metaanalysis)

close_to <- function(x, y, tolerance = 1e-9) all(abs(x - y) <= tolerance * (1 + abs(y)))
message_of <- function(expression) tryCatch({ expression; "" }, error = conditionMessage)

# Log risk ratios of 13 trials of BCG vaccination (Colditz et al. 1994, JAMA 271), and figures for them that
# another program gave, its iterations run to a step of 1e-12.
a <- c(4L, 6L, 3L, 62L, 33L, 180L, 8L, 505L, 29L, 17L, 186L, 5L, 27L)
b <- c(119L, 300L, 228L, 13536L, 5036L, 1361L, 2537L, 87886L, 7470L, 1699L, 50448L, 2493L, 16886L)
c <- c(11L, 29L, 11L, 248L, 47L, 372L, 10L, 499L, 45L, 65L, 141L, 3L, 29L)
d <- c(128L, 274L, 209L, 12619L, 5761L, 1079L, 619L, 87892L, 7232L, 1600L, 27197L, 2338L, 17825L)
y <- log(a / (a + b)) - log(c / (c + d))
v <- 1 / a - 1 / (a + b) + 1 / c - 1 / (c + d)
trials <- pool_many(y, v, tau2 = "dl")
figures <- c(estimate = -0.714117222073227, std_error = 0.178742089535403, tau2 = 0.308760262862376,
             tau2_lower = 0.119718361141261, tau2_upper = 1.11147908406093, i2 = 0.921173468545621,
             pi_lower = -1.99883849575212, pi_upper = 0.570604051605664)
stopifnot(trials$k == 13, trials$status == 0, close_to(unlist(trials[names(figures)]), figures))

# Random sets of 2 to 9 studies, a third of them without variance between studies.
set.seed(20)
sets <- 12
variances <- matrix(runif(9 * sets, 0.01, 0.3), 9, dimnames = list(NULL, paste0("s", 1:sets)))
effects <- variances
effects[] <- rnorm(9 * sets, 0.3, sqrt(variances + rep(c(0, 0.1, 0.5), each = 9)))
effects[cbind(9:3, 1:7)] <- NA
effects[3:9, sets] <- NaN
variances[1, 3] <- NA
matrices <- pool_many(effects, variances)

# The same sets in any form are the same results, on any number of threads.
long <- order(row(effects))
set_of_study <- factor(colnames(effects), levels = rev(colnames(effects)))[col(effects)]
in_lists <- function(values) lapply(split(values, col(values)), c)
same <- function(results) stopifnot(identical(results[names(results) != "group"], matrices[-1]))
same(pool_many(effects, variances, threads = 3))
if (suppressWarnings(Sys.setlocale("LC_NUMERIC", "de_DE.UTF-8")) != "") # a decimal comma
    same(pool_many(effects, variances))
invisible(suppressWarnings(Sys.setlocale("LC_NUMERIC", "C")))
same(pool_many(c(effects), c(variances), groups = set_of_study))
same(pool_many(effects[long], variances[long], groups = set_of_study[long]))
same(pool_many(in_lists(effects), in_lists(variances)))
same(pool_many(as.data.frame(effects), as.data.frame(variances)))
same(do.call(rbind, lapply(1:sets, function(set) pool_many(effects[, set], variances[, set]))))
stopifnot(identical(matrices$group, colnames(effects)),
          identical(levels(pool_many(c(effects), c(variances), groups = set_of_study)$group), levels(set_of_study)),
          identical(pool_many(effects, variances, columns = c("p", "k")), matrices[c("group", "p", "k")]),
          identical(pool_many(matrix(1:6, 3), matrix(6:1, 3)), pool_many(list(1:3, 4:6), list(6:4, 3:1))),
          close_to(matrices$mlog10p, -log10(matrices$p)))

# Nothing to pool, and studies that cannot be pooled.
nothing <- pool_many(matrix(c(NA, NA, 1, Inf), 2), matrix(c(1, 1, 0, 1), 2))
stopifnot(nothing$k == 0, nothing$left_out == c(0, 2), is.na(nothing$estimate), !is.nan(nothing$estimate),
          grepl("stud", status_text(nothing$status)), nrow(pool_many(list(), list())) == 0,
          nrow(pool_many(matrix(0, 5, 0), matrix(0, 5, 0))) == 0, pool_many(double(), double())$k == 0)

# Each error names the argument.
stopifnot(
    grepl("`tau2` is not one of .*reml", message_of(pool_many(y, v, tau2 = "rmle"))),
    grepl("`model` is not one of", message_of(pool_many(y, v, model = NA))),
    grepl("`level` is not a number", message_of(pool_many(y, v, level = 95))),
    grepl("`threads` is not", message_of(pool_many(y, v, threads = -1))),
    grepl("`tau2_interval`", message_of(pool_many(list(), list(), tau2 = "dl", tau2_interval = "profile-likelihood"))),
    grepl("`columns` has \"se\"", message_of(pool_many(y, v, columns = c("estimate", "se")))),
    grepl("`effects` is not numeric", message_of(pool_many(as.character(y), v))),
    grepl("`variances` has an element", message_of(pool_many(list(1, 2), list(1, factor(2))))),
    grepl("`variances` has 12 elements", message_of(pool_many(y, v[-1]))),
    grepl("not matrices of as many rows", message_of(pool_many(effects, t(variances)))),
    grepl("not matrices of as many rows", message_of(pool_many(c(effects), variances))),
    grepl("array of 3 dimensions", message_of(pool_many(array(1, c(2, 2, 2)), array(1, c(2, 2, 2))))),
    grepl("columns of `effects` and `variances`", message_of(pool_many(effects, variances[, sets:1]))),
    grepl("same lengths", message_of(pool_many(list(1:2, 3), list(1, 2:3)))),
    grepl("`groups` has missing", message_of(pool_many(y, v, groups = c(NA, 1:12)))),
    grepl("`groups` goes with vectors", message_of(pool_many(effects, variances, groups = 1:9))))

# The package metafor, set by set: all estimators with all adjustments.
if (requireNamespace("metafor", quietly = TRUE)) {
    figures_of <- function(set, method, test) {
        fit <- metafor::rma(effects[, set], variances[, set], method = method, test = test, tau2 = NULL,
                            control = list(maxiter = 10000, threshold = 1e-13, tol = 1e-13))
        reach <- suppressWarnings(qt(0.975, fit$k - 2)) * sqrt(fit$se^2 + fit$tau2) * c(-1, 1)
        interval <- if (method != "FE" && test == "z") # the same with any test
            confint(fit, control = list(tol = 1e-12, tau2.max = 1e6))$random[1, 2:3]
        c(k = fit$k, estimate = fit$b, std_error = fit$se, statistic = fit$zval, p = fit$pval,
          ci_lower = fit$ci.lb, ci_upper = fit$ci.ub, tau2 = fit$tau2, tau2 = interval, q = fit$QE, q_p = fit$QEp,
          i2 = fit$I2 / 100, pi_lower = fit$b + reach[1], pi_upper = fit$b + reach[2])
    }
    tests <- c(none = "z", adjusted = "knha", truncated = "adhoc")
    for (method in c("REML", "ML", "DL", "PM", "HE", "HS", "SJ")) for (adjustment in names(tests)) {
        ours <- pool_many(effects, variances, tau2 = tolower(method), knapp_hartung = adjustment)
        theirs <- suppressWarnings(t(sapply(1:sets, figures_of, method, tests[[adjustment]])))
        colnames(theirs) <- sub("tau2.ci.lb", "tau2_lower", sub("tau2.ci.ub", "tau2_upper", colnames(theirs)))
        compared <- as.matrix(ours[colnames(theirs)])
        stopifnot(identical(unname(is.na(compared)), unname(is.na(theirs))))
        stopifnot(close_to(compared[!is.na(compared)], theirs[!is.na(theirs)], 1e-7))
    }
    fixed <- pool_many(effects, variances, model = "fixed")
    theirs <- suppressWarnings(t(sapply(1:sets, figures_of, "FE", "z")))
    stopifnot(close_to(as.matrix(fixed[c("estimate", "std_error", "p", "q")]),
                       theirs[, c("estimate", "std_error", "p", "q")]), all(is.na(fixed$tau2)))
}
