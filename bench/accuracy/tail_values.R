# Reads lines "distribution x df1 df2" and prints for each the upper tail of R and its natural logarithm.
points <- read.table(file("stdin"), colClasses = c("character", "numeric", "numeric", "numeric"))
tail_at <- function(distribution, x, df1, df2, log)
  switch(distribution,
    StdNorm = pnorm(x, lower.tail = FALSE, log.p = log),
    Chi = pchisq(x, df1, lower.tail = FALSE, log.p = log),
    T = pt(x, df1, lower.tail = FALSE, log.p = log),
    F = pf(x, df1, df2, lower.tail = FALSE, log.p = log))
for (i in seq_len(nrow(points))) {
  p <- points[i, ]
  tails <- sapply(c(FALSE, TRUE), function(log) tail_at(p[[1]], p[[2]], p[[3]], p[[4]], log))
  cat(sprintf("%.17g %.17g\n", tails[1], tails[2]))
}
