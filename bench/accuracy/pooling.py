"""Measures pooling and what goes with it: effect sizes, models, subgroups, small-study tests."""

import sys

from mpmath import mp, mpf

import exact
from harness import DATA, T, TIGHT, Z, note, note_tau2, read, run, upper_normal, values

CELLS = ["treatment_events", "treatment_nonevents", "control_events", "control_nonevents"]
MEANS = ["treatment_n", "treatment_mean", "treatment_sd", "control_n", "control_mean", "control_sd"]


def corrected(table):
    return [cell + mpf("0.5") for cell in table] if 0 in table else table


class Studies:
    """Arguments for the program, and the exact effects and variances that it should find."""

    kind = "pooling"

    def __init__(self, name, arguments, effects, tables=None, effect=None, as_read=None):
        self.name, self.arguments, self.tables, self.effect = name, arguments, tables, effect
        self.as_read = as_read  # the tables without correction
        self.y = [e for e, _ in effects]
        self.v = [v for _, v in effects]
        self.x = [[mpf(1)]] * len(effects)


def path_of(name):
    return str(DATA / (name + ".csv"))


def options_of(columns):
    """An option for each column; both have the same name."""
    return [part for column in columns for part in ("--" + column.replace("_", "-"), column)]


def studies_with_tables():
    for name in ["bcg_vaccine", "magnesium", "beta_blockers"]:
        as_read = [values(row, CELLS) for row in read(name)]
        tables = [corrected(table) for table in as_read]
        for effect in ["odds-ratio", "peto", "risk-ratio", "risk-difference"]:
            yield Studies("%s, %s" % (name, effect),
                          ["binary", path_of(name), *options_of(CELLS), "--effect", effect],
                          [exact.table_effect(effect, table) for table in tables], tables, effect, as_read)


def studies_with_means():
    forms = [("mean-difference", ["--equal-variances"]), ("cohens-d", ["--variance-adjustment"]),
             ("hedges-g", ["--variance-adjustment"]), ("glass-delta", ["--glass-group", "treatment"])]
    for name in ["stroke_length_of_stay", "elevated_co2"]:
        groups = [values(row, MEANS) for row in read(name)]
        for effect, option in forms:
            for chosen in [[], option]:
                yield Studies("%s, %s" % (name, " ".join([effect, *chosen])),
                              ["continuous", path_of(name), *options_of(MEANS), "--effect", effect, *chosen],
                              [exact.means_effect(effect, bool(chosen), group) for group in groups])


def studies_with_effects():
    for name in ["passive_smoking", "teacher_expectancy", "writing_to_learn"]:
        yield Studies(name, ["effects", path_of(name), "--effect-size", "effect", "--variance", "variance"],
                      [values(row, ["effect", "variance"]) for row in read(name)])


def note_estimate(kind, where, found, estimate, variance, quantile, significance):
    error = mp.sqrt(variance)
    note(kind + ": estimate", where, found["EstEffectSize"][0], estimate, error)
    note(kind + ": standard error", where, found["EstStdError"][0], error)
    note(kind + ": bounds", where, found["EstCILower"][0], estimate - quantile * error, error)
    note(kind + ": bounds", where, found["EstCIUpper"][0], estimate + quantile * error, error)
    note("significances (absolute)", where, found["EstSig"][0], 2 * significance(abs(estimate / error)), 1)


def note_fixed_heterogeneity(where, found, q, k):
    note("Q", where, found["HomoTestChisquareQ"][0], q)
    note("significances (absolute)", where, found["HomoTestSig"][0], exact.upper_chi(q, k - 1), 1)
    h2, i2 = exact.heterogeneity(q, k)
    for key, h, i in zip(["Index", "CILower", "CIUpper"], h2, i2):
        note("H² and bounds, fixed effects", where, found["H2" + key][0], h)
        note("I² and bounds, fixed effects (absolute)", where, found["I2" + key][0], i, 1)


def measure_effects(studies, found):
    for i, (y, v) in enumerate(zip(studies.y, studies.v)):
        kind = "effects of tables" if studies.tables else "effects of means"
        note(kind + ": effect", studies.name, found["EffectSize"][i], y, mp.sqrt(v))
        note(kind + ": variance", studies.name, found["Variance"][i], v)


def measure_fixed(studies):
    found = run([*studies.arguments, "--model", "fixed"])
    if studies.arguments[0] != "effects":
        measure_effects(studies, found)
    fit = exact.Fit(studies.x, studies.y, [1 / v for v in studies.v])
    note_estimate("fixed effects", studies.name, found, fit.b[0], fit.inverse[0, 0], Z, upper_normal)
    note_fixed_heterogeneity(studies.name, found, fit.squares(), len(studies.y))


def measure_pooled_tables(studies, rule, tables, included):
    """`included`: which studies take part, also in the homogeneity test of the corrected effects."""
    found = run([*studies.arguments, "--model", "fixed", "--weights", "mantel-haenszel",
                 "--pooled-zero-cells", rule])
    where = "%s, %s" % (studies.name, rule)
    estimate, variance = exact.pool_tables(studies.effect, [tables[i] for i in included])
    note_estimate("Mantel-Haenszel, Peto", where, found, estimate, variance, Z, upper_normal)
    q = sum((studies.y[i] - estimate)**2 / studies.v[i] for i in included)
    note_fixed_heterogeneity(where, found, q, len(included))


def measure_tables(studies):
    everyone = range(len(studies.tables))
    measure_pooled_tables(studies, "as-studies", studies.tables, everyone)
    informative = [i for i in everyone if exact.is_informative(studies.effect, studies.as_read[i])]
    measure_pooled_tables(studies, "none", studies.as_read, informative)


def measure_random(studies, estimator):
    loose = run([*studies.arguments, "--tau2", estimator])["Tau2Var"][0]
    tight = run([*studies.arguments, "--tau2", estimator, *TIGHT])
    expected = exact.tau2(estimator, studies.x, studies.y, studies.v, mpf(tight["Tau2Var"][0]))
    note_tau2(studies, estimator, tight["Tau2Var"][0], loose, expected)
    # What follows from τ² is measured from the program's τ² on; how far that one is off was noted before.
    measure_pooled(studies, estimator, "none", tight)
    for adjustment in ["adjusted", "truncated"]:
        found = run([*studies.arguments, "--tau2", estimator, "--knapp-hartung", adjustment, *TIGHT])
        measure_pooled(studies, estimator, adjustment, found)


def measure_pooled(studies, estimator, adjustment, found):
    where = "%s, %s, %s" % (studies.name, estimator.upper(), adjustment)
    k, t = len(studies.y), mpf(found["Tau2Var"][0])
    fit = exact.Fit(studies.x, studies.y, [1 / (v + t) for v in studies.v])
    factor = fit.squares() / (k - 1) if adjustment != "none" else mpf(1)
    variance = fit.inverse[0, 0] * (max(factor, mpf(1)) if adjustment == "truncated" else factor)
    if adjustment == "none":
        note_estimate("random effects", where, found, fit.b[0], variance, Z, upper_normal)
    else:
        note_estimate("Knapp and Hartung", where, found, fit.b[0], variance, T[k - 1],
                      lambda t: exact.upper_t(t, k - 1))
    spread = mp.sqrt(variance + t)
    for key, sign in [("PILower", -1), ("PIUpper", 1)]:
        note("prediction interval", where, found[key][0], fit.b[0] + sign * T[k - 2] * spread, spread)
    fixed = exact.Fit(studies.x, studies.y, [1 / v for v in studies.v])
    typical = (k - 1) / fixed.trace()
    note("H² and I², random effects", where, found["H2Index"][0], (typical + t) / typical)
    note("H² and I², random effects", where, found["I2Index"][0], t / (typical + t))


def measure_small_study_test(studies, test):
    rows = [(y, mp.sqrt(v), 1 / v) for y, v in zip(studies.y, studies.v)]
    if test != 0:
        rows = [exact.tested_table(test, table, y) for table, y in zip(studies.tables, studies.y)]
    fit = exact.Fit([[mpf(1), covariate] for _, covariate, _ in rows], [row[0] for row in rows],
                    [row[2] for row in rows])
    where = "%s, test %d" % (studies.name, test)
    for option, scale in [([], 1), (["--test-dispersion"], fit.squares() / fit.df)]:
        found = run([*studies.arguments, "--model", "fixed", "--small-study-test", str(test), *option])
        error = mp.sqrt(fit.inverse[1, 1] * scale)
        note("small-study tests: slope", where, found["RegrTestCoefficient"][0][1], fit.b[1], error)
        note("small-study tests: standard error", where, found["RegrTestBetaStandErr"][0][1], error)


def measure_groups(studies, column, rows):
    labels = [row[column] for row in rows]
    groups = [[study for study, of in zip(zip(studies.y, studies.v), labels) if of == label]
              for label in sorted(set(labels))]
    for model in ["fixed", "random"]:
        found = run([*studies.arguments, "--model", model, "--subgroup", column, *TIGHT])
        tau2s = [mpf(t or 0) for t in found["Tau2Var"]]
        q = exact.between_groups(groups, tau2s)
        where = "%s, %s, %s" % (studies.name, column, model)
        note("subgroups: Q between", where, found["GDQbVal"], q)
        note("significances (absolute)", where, found["GDQbSig"], exact.upper_chi(q, len(groups) - 1), 1)


def measure_contrast(studies, column, rows):
    found = run([*studies.arguments, "--model", "fixed", "--contrast", column])
    coefficients = [mpf(float(row[column])) for row in rows]
    error = mp.sqrt(sum(c**2 * v for c, v in zip(coefficients, studies.v)))
    note("contrasts: estimate", studies.name, found["ContrastEstES"][0],
         sum(c * y for c, y in zip(coefficients, studies.y)), error)
    note("contrasts: standard error", studies.name, found["ContrastEstStdError"][0], error)


def measure_trim_fill(studies, method, side):
    """By the fixed-effect model, so that nothing is iterated but the trimming."""
    found = run([*studies.arguments, "--model", "fixed", "--trim-fill", method, "--side", side,
                 "--trim-fill-model", "fixed"])
    sign = 1 if side == "1" else -1
    ordered = sorted(zip([sign * y for y in studies.y], studies.v), key=lambda study: study[0])
    missing = 0
    for _ in range(100):
        kept = ordered[:len(ordered) - missing]
        centre = sum(y / v for y, v in kept) / sum(1 / v for _, v in kept)
        previous, missing = missing, exact.missing_studies(method, [y for y, _ in ordered], centre)
        if missing == previous:
            break
    filled = ordered + [(2 * centre - y, v) for y, v in ordered[len(ordered) - missing:]]
    where = "%s, %s, side %s" % (studies.name, method, side)
    note("trim-and-fill: number of studies (absolute)", where, found["TFImputedN0"], mpf(missing), 1)
    weight = sum(1 / v for _, v in filled)
    note("trim-and-fill: estimate", where, found["OverallTFEffectSize"],
         sign * sum(y / v for y, v in filled) / weight, 1 / mp.sqrt(weight))


def measure_one(studies):
    measure_fixed(studies)
    if studies.tables:
        measure_tables(studies)
    for estimator in exact.ESTIMATORS:
        measure_random(studies, estimator)
    for test in [0, 1, 2, 3] if studies.tables else [0]:
        measure_small_study_test(studies, test)
    if "bcg_vaccine" in studies.name:
        measure_groups(studies, "allocation", read("bcg_vaccine"))
        measure_contrast(studies, "latitude", read("bcg_vaccine"))
    for method in ["linear", "run", "quadratic"]:
        for side in ["1", "2"]:
            measure_trim_fill(studies, method, side)


def measure():
    for studies in [*studies_with_tables(), *studies_with_means(), *studies_with_effects()]:
        print(studies.name, file=sys.stderr)
        measure_one(studies)
