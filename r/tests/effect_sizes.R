library(metaanalysis)

close_to <- function(x, y) all(abs(x - y) <= 1e-12 * (1 + abs(y)))
message_of <- function(expression) tryCatch({ expression; "" }, error = conditionMessage)

a <- c(4, 6, 0, 62); b <- c(119, 300, 228, 13536); c <- c(11, 29, 11, 248); d <- c(128, 274, 209, 12619)
n <- c(20, 35, 12, 60); m <- c(10.1, 9.3, 11, 8.2); s <- c(2.1, 1.8, 3, 2.2)

twice <- effect_sizes_binary(cbind(x = a, y = c), cbind(b, d), cbind(c, a), cbind(d, b))
stopifnot(close_to(twice$effect[, "x"], -twice$effect[, "y"]),
          pool_many(twice$effect, twice$variance)$group == c("x", "y"),
          identical(twice$variance[, 1], effect_sizes_binary(a, b, c, d)$variance),
          is.na(effect_sizes_binary(c(a[-1], -1), b, 11L, d)$effect[4]),
          grepl("negative", exclusion_text(effect_sizes_binary(-1, 2, 3, 4)$exclusion)),
          grepl("`control_events` has not the shape", message_of(effect_sizes_binary(a, b, 1:3, d))),
          grepl("`zero_delta` is not", message_of(effect_sizes_binary(a, b, c, d, zero_delta = -1))),
          grepl("all-if-any", message_of(effect_sizes_binary(cbind(a), 1, 2, 3, zero_cells = "all-if-any"))))

if (requireNamespace("metafor", quietly = TRUE)) {
    tables <- c("odds-ratio" = "OR", "risk-ratio" = "RR", "risk-difference" = "RD", peto = "PETO")
    for (measure in names(tables)) {
        ours <- effect_sizes_binary(a, b, c, d, measure = measure)
        to <- if (measure == "peto") "none" else "only0" # the library's rule holds for Peto's odds ratio too
        compared <- if (measure == "peto") -3 else 1:4
        theirs <- metafor::escalc(tables[[measure]], ai = a, bi = b, ci = c, di = d, to = to)
        stopifnot(close_to(ours$effect[compared], theirs$yi[compared]),
                  close_to(ours$variance[compared], theirs$vi[compared]))
    }
    difference <- effect_sizes_continuous(n, m, s, n + 2, m - 1, s * 1.1, measure = "mean-difference")
    theirs <- metafor::escalc("MD", n1i = n, m1i = m, sd1i = s, n2i = n + 2, m2i = m - 1, sd2i = s * 1.1)
    stopifnot(close_to(difference$effect, theirs$yi), close_to(difference$variance, theirs$vi))
    standardized <- effect_sizes_continuous(n, m, s, n + 2, m - 1, s * 1.1, measure = "hedges-g")
    theirs <- metafor::escalc("SMD", n1i = n, m1i = m, sd1i = s, n2i = n + 2, m2i = m - 1, sd2i = s * 1.1)
    stopifnot(close_to(standardized$effect, theirs$yi))
}
