"""Effect sizes and means converted from intervals, p-values and medians, against 50-digit arithmetic."""

import csv
import itertools
import tempfile

from mpmath import mp, mpf

import exact
import harness


def standard_error(estimate, lower, upper, p, level, is_ratio):
    scale = mp.log if is_ratio else mpf
    if p is not None:
        with mp.workdps(350):  # for the quantile of 1 - 1e-300
            return abs(scale(estimate)) / exact.normal_quantile(1 - p / 2)
    return (scale(upper) - scale(lower)) / (2 * exact.normal_quantile((1 + level) / 2))


def mean_and_sd(n, low, q1, median, q3, high):
    """Luo et al. (2018), Wan et al. (2014); None for quartiles or extremes that are not reported."""
    by_extremes, by_quartiles = low is not None, q1 is not None
    if by_extremes:
        sd_extremes = (high - low) / (2 * exact.normal_quantile((n - mpf("0.375")) / (n + mpf("0.25"))))
    if by_quartiles:
        sd_quartiles = (q3 - q1) / (2 * exact.normal_quantile((mpf("0.75") * n - mpf("0.125")) / (n + mpf("0.25"))))
    if by_extremes and by_quartiles:
        u = mpf("2.2") / (mpf("2.2") + n ** mpf("0.75"))
        w = mpf("0.7") - mpf("0.72") / n ** mpf("0.55")
        return u * (low + high) / 2 + w * (q1 + q3) / 2 + (1 - u - w) * median, (sd_extremes + sd_quartiles) / 2
    if by_extremes:
        w = 4 / (4 + n ** mpf("0.75"))
        return w * (low + high) / 2 + (1 - w) * median, sd_extremes
    w = mpf("0.7") + mpf("0.39") / n
    return w * (q1 + q3) / 2 + (1 - w) * median, sd_quartiles


def run(command, columns, rows, options):
    """Analyses rows of texts, empty where there is no value."""
    with tempfile.NamedTemporaryFile("w", suffix=".csv", newline="") as file:
        writer = csv.writer(file)
        writer.writerow(columns)
        writer.writerows(rows)
        file.flush()
        return harness.run([command, file.name, *[text for c in columns for text in ("--" + c, c)], *options])


def exact_values(row):
    return [mpf(float(text)) if text else None for text in row]


def measure_effects():
    columns = ["effect-size", "ci-lower", "ci-upper", "p-value"]
    intervals = [["0.84", "0.61", "1.15", ""], ["1.3", "1.299", "1.3012", ""], ["250", "0.01", "1e6", ""]]
    p_values = [["0.84", "", "", p] for p in ("0.3", "0.9999", "1e-12", "1e-300")]
    for is_ratio, level in itertools.product((False, True), ("0.95", "0.8", "0.9999")):
        rows = intervals + p_values
        results = run("effects", columns, rows, ["--ci-level", level] + ["--ratio"] * is_ratio)
        assert results["NonMissingStudyID"] == list(range(len(rows)))
        for row, found in zip(rows, results["StdError"]):
            estimate, lower, upper, p = exact_values(row)
            expected = standard_error(estimate, lower, upper, p, mpf(float(level)), is_ratio)
            harness.note("conversions to standard errors", "a p-value" if p else "an interval", found, expected)


def measure_means():
    group = ["n", "min", "q1", "median", "q3", "max"]
    columns = ["treatment-" + name for name in group] + ["control-n", "control-mean", "control-sd"]
    control = ["1000000", "0", "0.001"]
    summaries = [[n, low, q1, "10.5", q3, high]
                 for n in ("2", "5", "17", "1000", "1000000000")
                 for (low, high), (q1, q3) in itertools.product((("", ""), ("2.25", "19")), (("", ""), ("8.125", "12")))
                 if low or q1]
    results = run("continuous", columns, [row + control for row in summaries], ["--effect", "mean-difference"])
    assert results["NonMissingStudyID"] == list(range(len(summaries)))
    _, _, control_sd = exact_values(control)
    for row, effect, variance in zip(summaries, results["EffectSize"], results["Variance"]):
        n = mpf(row[0])
        mean, sd = mean_and_sd(*exact_values(row))
        expected = sd**2 / n + control_sd**2 / mpf(control[0])
        where = "n = " + row[0]
        harness.note("conversions to means", where, effect, mean)
        harness.note("conversions to variances of means", where, variance, expected)


def measure():
    measure_effects()
    measure_means()
