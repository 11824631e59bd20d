"""Measures meta-regression."""

import csv
import sys
import tempfile
from pathlib import Path

from mpmath import mp, mpf

import exact
from harness import T, TIGHT, note, note_tau2, read, run, values
from pooling import CELLS


class Regression:
    """A meta-regression's data, written to a file with all digits."""

    kind = "meta-regression"

    def __init__(self, name, rows, covariates, folder):
        self.name, self.covariates = name, covariates
        self.y = [mpf(row[0]) for row in rows]
        self.v = [mpf(row[1]) for row in rows]
        self.x = [[mpf(1), *map(mpf, row[2:])] for row in rows]
        self.path = Path(folder) / (name.split(",")[0] + ".csv")
        self.write(rows)
        self.arguments = ["regression", str(self.path), "--effect-size", "y", "--variance", "v"]
        for covariate in covariates:
            self.arguments += ["--covariate", covariate]
        # A combination at the values of a study, one that mixes slopes, and a point between two studies.
        self.hypotheses = [[float(x) for x in self.x[0]], [0.0, *[(-2.0)**j for j in range(len(covariates))]]]
        self.values = [mpf(0), mpf(0.25)]
        self.point = [(float(a) + float(b)) / 2 for a, b in zip(self.x[0], self.x[-1])]
        self.questions = []
        for weights, value in zip(self.hypotheses, self.values):
            self.questions += ["--hypothesis", "%s=%r" % (",".join(map(repr, weights)), float(value))]
        self.questions += ["--predict", ",".join("%s=%r" % pair for pair in zip(covariates, self.point[1:]))]

    def write(self, rows, clusters=None):
        clusters = clusters or [0] * len(rows)
        with open(self.path, "w", encoding="utf-8") as file:
            csv.writer(file).writerows([["y", "v", *self.covariates, "cluster"],
                                        *([*row, cluster] for row, cluster in zip(rows, clusters))])

    def rows(self, y):
        return [[value, float(v), *map(float, x[1:])] for value, v, x in zip(y, self.v, self.x)]


def all_regressions(folder):
    rows = read("bcg_vaccine")
    ratios = [[float(part) for part in exact.table_effect("risk-ratio", values(row, CELLS))] for row in rows]
    for name, covariates in [("bcg_1, on latitude", ["latitude"]),
                             ("bcg_2, on latitude and year", ["latitude", "year"])]:
        yield Regression(name, [ratio + [float(row[column]) for column in covariates]
                                for ratio, row in zip(ratios, rows)], covariates, folder)
    years = [float(row["year"]) for row in rows]
    yield Regression("bcg_3, on year and its square",
                     [ratio + [year, year * year] for ratio, year in zip(ratios, years)],
                     ["year", "square"], folder)
    yield Regression("bcg_4, variances over ten powers of ten",
                     [[ratio[0], 10.0 ** (-10 * i / 12), float(row["latitude"]), year]
                      for i, (ratio, row, year) in enumerate(zip(ratios, rows, years))],
                     ["latitude", "year"], folder)
    for name, covariates in [("teacher_expectancy", ["weeks"]),
                             ("writing_to_learn", ["length", "wic", "feedback"])]:
        columns = ["effect", "variance", *covariates]
        complete = [row for row in read(name) if all(row[column] for column in columns)]
        yield Regression("%s, on %s" % (name, " and ".join(covariates)),
                         [[float(row[column]) for column in columns] for row in complete], covariates, folder)


def note_coefficients(where, found, fit, scale):
    for j in range(fit.p):
        error = mp.sqrt(scale * fit.inverse[j, j])
        note("meta-regression: coefficients", where, found["Estimation"][j], fit.b[j], error)
        note("meta-regression: standard errors", where, found["BetaStandErr"][j], error)
        note("meta-regression: bounds", where, found["BetaConfInterValLower"][j],
             fit.b[j] - T[fit.df] * error, error)
        note("meta-regression: significances (absolute)", where, found["BetaTestPValue"][j],
             2 * exact.upper_t(abs(fit.b[j] / error), fit.df), 1)


def note_answers(where, regression, found, fit, scale, t):
    """Hypotheses, tests of the effects, variance inflation and predictions."""
    rows = mp.matrix(regression.hypotheses)
    covariance = scale * rows * fit.inverse * rows.T
    estimates = rows * mp.matrix(fit.b)
    differences = mp.matrix([e - r for e, r in zip(estimates, regression.values)])
    for i, row in enumerate(regression.hypotheses):
        error = mp.sqrt(covariance[i, i])
        note("meta-regression: hypotheses", where, found["HypothesisEstimate"][i], estimates[i], error)
        note("meta-regression: hypotheses", where, found["HypothesisVal"][i], differences[i] / error, 1 + abs(
            differences[i] / error))
    joint = (differences.T * covariance**-1 * differences)[0]
    note("meta-regression: joint tests of hypotheses", where, found["HypothesisJointVal"],
         joint / len(regression.hypotheses))
    kept = list(range(1, fit.p))
    part = mp.matrix([[fit.inverse[i, j] for j in kept] for i in kept])
    for i, inverse in enumerate([(part**-1)[j, j] for j in range(len(kept))]):
        note("meta-regression: variance inflation", where, found["VarianceInflation"][i + 1], part[i, i] * inverse)
        note("meta-regression: tests of effects", where, found["EffectTestVal"][i],
             fit.b[i + 1]**2 / (part[i, i] * scale))
    point = mp.matrix([regression.point])
    variance = (scale * point * fit.inverse * point.T)[0]
    effect = (point * mp.matrix(fit.b))[0]
    note("meta-regression: predictions", where, found["PredictedEffect"][0], effect, mp.sqrt(variance))
    for key, more in [("PredictedCIUpper", mpf(0)), ("PredictedPIUpper", t)]:
        error = mp.sqrt(variance + more)
        note("meta-regression: predictions' bounds", where, found[key][0], effect + T[fit.df] * error, error)


def wald(fit):
    kept = range(1, fit.p)
    part = mp.matrix([[fit.inverse[i, j] for j in kept] for i in kept])**-1
    return sum(fit.b[i] * part[i - 1, j - 1] * fit.b[j] for i in kept for j in kept)


def measure_regression(regression, estimator):
    where = "%s, %s" % (regression.name, estimator.upper())
    found = run([*regression.arguments, *regression.questions, "--tau2", estimator, *TIGHT])
    loose = run([*regression.arguments, "--tau2", estimator])
    expected = exact.tau2(estimator, regression.x, regression.y, regression.v, mpf(found["Tau"]))
    note_tau2(regression, estimator, found["Tau"], loose["Tau"], expected)
    t = mpf(found["Tau"])
    fit = exact.Fit(regression.x, regression.y, [1 / (v + t) for v in regression.v])
    note_coefficients(where, found, fit, mpf(1))
    note_predictions(where, regression, found, fit)
    note_answers(where, regression, found, fit, mpf(1), t)
    note("meta-regression: model tests", where, found["WaldChiSquareTest"], wald(fit))
    adjusted = run([*regression.arguments, *regression.questions, "--tau2", estimator, "--knapp-hartung", "adjusted", *TIGHT])
    scale = fit.squares() / fit.df
    note_coefficients(where + ", adjusted", adjusted, fit, scale)
    note_answers(where + ", adjusted", regression, adjusted, fit, scale, t)
    note("meta-regression: model tests", where, adjusted["FTestVal"], wald(fit) / (scale * (fit.p - 1)))
    note("meta-regression: significances (absolute)", where, adjusted["FPValue"],
         exact.upper_f(wald(fit) / (scale * (fit.p - 1)), fit.p - 1, fit.df), 1)
    measure_residual_heterogeneity(where, regression, found, estimator, t)


def note_predictions(where, regression, found, fit):
    for row, y, w, h, residual, score in zip(regression.x, regression.y, fit.w, fit.h, fit.r, found["Score"]):
        error = mp.sqrt(h / w)
        note("meta-regression: predictions", where, score[0], y - residual, error)
        note("meta-regression: predictions' bounds", where, score[2], y - residual - T[fit.df] * error, error)
        note("meta-regression: predictions' standard errors", where, score[1], error)
        note("meta-regression: residuals' standard errors", where, score[5], mp.sqrt((1 - h) / w))
        note("meta-regression: leverages", where, score[6], h)


def measure_residual_heterogeneity(where, regression, found, estimator, t):
    fixed = exact.Fit(regression.x, regression.y, [1 / v for v in regression.v])
    typical = fixed.df / fixed.trace()
    note("meta-regression: Q", where, found["ResHomoChiSqure"], fixed.squares())
    note("meta-regression: H²", where, found["HresSquare"], (typical + t) / typical)
    note("meta-regression: I² (absolute)", where, found["IresSquare"], t / (typical + t), 1)
    constant = [[mpf(1)]] * len(regression.y)
    pooled = run(["effects", *regression.arguments[1:6], "--tau2", estimator, *TIGHT])
    without = exact.tau2(estimator, constant, regression.y, regression.v, mpf(pooled["Tau2Var"][0]))
    note("meta-regression: R² (absolute)", where, found["RSquare"], max(mpf(0), (without - t) / without), 1)


def measure_fixed_regression(regression):
    fit = exact.Fit(regression.x, regression.y, [1 / v for v in regression.v])
    for option, scale in [([], mpf(1)), (["--dispersion"], fit.squares() / fit.df)]:
        found = run([*regression.arguments, "--model", "fixed", *option])
        note_coefficients(regression.name + ", fixed", found, fit, scale)
        note("meta-regression: model tests", regression.name, found["WaldChiSquareTest"], wald(fit) / scale)


def measure_robust(regression, clusters):
    where = "%s, %d clusters" % (regression.name, len(set(clusters)))
    regression.write(regression.rows(map(float, regression.y)), clusters)
    for kind in ["cr2", "cr0"]:
        found = run([*regression.arguments, "--cluster", "cluster", "--sandwich", kind])
        t = mpf(found["Tau"])
        fit = exact.Fit(regression.x, regression.y, [1 / (v + t) for v in regression.v])
        robust = exact.Robust(fit, regression.x, clusters, kind == "cr2")
        for j in range(fit.p):
            error = mp.sqrt(robust.covariance()[j, j])
            note("meta-regression: robust standard errors, " + kind.upper(), where, found["RobustStdError"][j], error)
            if kind == "cr2":
                df = robust.df(j)
                note("meta-regression: Satterthwaite degrees of freedom", where, found["RobustDf"][j], df)
                note("meta-regression: robust significances (absolute)", where, found["RobustSig"][j],
                     2 * exact.upper_t(abs(fit.b[j] / error), df), 1)


def measure_unbiasedness(regression, clusters):
    """The equation that defines CR2. The variance is a quadratic form in the effects, so its expectation under the
    working model is the sum of v times the variance of a regression of each unit vector."""
    total = mp.zeros(len(regression.x[0]))
    for i, v in enumerate(regression.v):
        unit = [1.0 if j == i else 0.0 for j in range(len(regression.v))]
        regression.write(regression.rows(unit), clusters)
        found = run([*regression.arguments, "--cluster", "cluster", "--model", "fixed"])
        total += v * mp.matrix(found["RobustCovariance"])
    fit = exact.Fit(regression.x, regression.y, [1 / v for v in regression.v])
    where = "%s, %d clusters" % (regression.name, len(set(clusters)))
    for a in range(fit.p):
        for b in range(fit.p):
            note("meta-regression: expectation of CR2 under the working model", where, total[a, b], fit.inverse[a, b],
                 mp.sqrt(fit.inverse[a, a] * fit.inverse[b, b]))


def clusterings(count):
    """Seven clusters of unequal size, and each study on its own."""
    return [[min(i * i % 11, 6) for i in range(count)], list(range(count))]


def measure():
    with tempfile.TemporaryDirectory() as folder:
        for regression in all_regressions(folder):
            print(regression.name, file=sys.stderr)
            measure_fixed_regression(regression)
            for estimator in exact.ESTIMATORS:
                measure_regression(regression, estimator)
            for clusters in clusterings(len(regression.y)):
                measure_robust(regression, clusters)
                measure_unbiasedness(regression, clusters)
