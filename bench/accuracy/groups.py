"""Measures a common between-study variance of groups, the tests between groups, and the tests by ranks."""

import csv
import sys
import tempfile
from fractions import Fraction
from pathlib import Path

from mpmath import mp, mpf

import exact
from harness import T, TIGHT, note, read, run
from pooling import studies_with_effects, studies_with_tables


def signs(values):
    return [[(a > b) - (a < b) for b in values] for a in values]


def tie_sums(values):
    """Sums of t (t - 1), t (t - 1) (t - 2) and t (t - 1) (2t + 5)."""
    sizes = [values.count(value) for value in set(values)]
    return [sum(f(t) for t in sizes) for f in (lambda t: t * (t - 1), lambda t: t * (t - 1) * (t - 2),
                                                lambda t: t * (t - 1) * (2 * t + 5))]


def share_of_orders(count, inversions):
    """The share of the orders of `count` values with at most so many inversions, as a fraction."""
    orders = [1]
    for n in range(2, count + 1):
        orders = [sum(orders[max(0, q - n + 1):q + 1]) for q in range(len(orders) + n - 1)]
    return Fraction(sum(orders[:inversions + 1]), sum(orders))


def measure_rank_test(studies):
    """Equal effects have equal deviates; the 50 digits tell all others apart."""
    found = run([*studies.arguments, "--rank-test"])
    weight = sum(1 / v for v in studies.v)
    mean = sum(y / v for y, v in zip(studies.y, studies.v)) / weight
    # Ties are those of the doubles that the program has.
    pairs = list(zip(found["EffectSize"], found["Variance"]))
    deviates = {pair: (y - mean) / mp.sqrt(v - 1 / weight)
                for pair, y, v in zip(pairs, studies.y, studies.v)}
    x, y = signs([deviates[pair] for pair in pairs]), signs([v for _, v in pairs])
    k = len(pairs)
    difference = sum(x[i][j] * y[i][j] for i in range(k) for j in range(i))
    of_x, of_y = tie_sums([deviates[pair] for pair in pairs]), tie_sums([v for _, v in pairs])
    all_pairs = k * (k - 1)
    tau = 2 * difference / mp.sqrt((all_pairs - of_x[0]) * mpf(all_pairs - of_y[0]))
    note("small-study tests: Kendall's tau", studies.name, found["RankTestTau"], tau)
    variance = (mpf(all_pairs * (2 * k + 5) - of_x[2] - of_y[2]) / 18 + mpf(of_x[0] * of_y[0]) / (2 * all_pairs) +
                mpf(of_x[1] * of_y[1]) / (9 * all_pairs * (k - 2)))
    p = mp.erfc(abs(difference) / mp.sqrt(2 * variance))
    note("small-study tests: significance of tau, normal", studies.name, found["RankTestSig"], p)
    if k < 50 and of_x[0] + of_y[0] == 0:
        rarer = (all_pairs // 2 - abs(difference)) // 2
        share = min(Fraction(1), 2 * share_of_orders(k, rarer))
        note("small-study tests: significance of tau, exact", studies.name, found["RankTestExactSig"],
             mpf(share.numerator) / share.denominator)


def measure_limit(studies):
    fit = exact.Fit([[mpf(1), mp.sqrt(v)] for v in studies.v], studies.y, [1 / v for v in studies.v])
    found = run([*studies.arguments, "--model", "fixed", "--small-study-test", "egger", "--test-dispersion"])
    error = mp.sqrt(fit.inverse[0, 0] * fit.squares() / fit.df)
    for key, multiple in [("", 0), ("CILower", -T[fit.df]), ("CIUpper", T[fit.df])]:
        note("small-study tests: effect at standard error 0", studies.name, found["RegBasedTestLimit" + key],
             fit.b[0] + multiple * error, error)


def common_tau2(estimator, design, studies, near):
    """Hunter and Schmidt's estimator has weighted means of the groups."""
    if estimator != "hs":
        return exact.tau2(estimator, design, studies.y, studies.v, near)
    fit = exact.Fit(design, studies.y, [1 / v for v in studies.v])
    return max(mpf(0), (fit.squares() - fit.count) / sum(fit.w))


def measure_common(studies, labels, column, estimator):
    groups = sorted(set(labels))
    design = [[mpf(label == group) for group in groups] for label in labels]
    arguments = [*studies.arguments, "--subgroup", column, "--common-tau2", "--tau2", estimator]
    found = run([*arguments, "--knapp-hartung", "adjusted", *TIGHT])
    where = "%s, %s, %s" % (studies.name, column, estimator.upper())
    t = mpf(found["Tau2Var"][0])
    searched = run(arguments)["Tau2Var"][0]
    expected = common_tau2(estimator, design, studies, t)
    note("subgroups: common τ²", where, searched if estimator in exact.ITERATIVE else t, expected)
    fit = exact.Fit(design, studies.y, [1 / (v + t) for v in studies.v])
    factor = fit.squares() / fit.df
    for g in range(len(groups)):
        error = mp.sqrt(fit.inverse[g, g] * factor)
        note("subgroups: estimates with a common τ²", where, found["EstEffectSize"][g], fit.b[g], error)
        note("subgroups: bounds with a common τ²", where, found["EstCILower"][g], fit.b[g] - T[fit.df] * error, error)
    q = exact.between_groups(split(studies, labels, groups), [t] * len(groups))
    f = q / factor / (len(groups) - 1)
    note("subgroups: F between", where, found["GDQbF"], f)
    note("significances (absolute)", where, found["GDQbFSig"], exact.upper_f(f, len(groups) - 1, fit.df), 1)


def split(studies, labels, groups):
    return [[study for study, label in zip(zip(studies.y, studies.v), labels) if label == group]
            for group in groups]


def measure_welch(studies, labels, column):
    groups = sorted(set(labels))
    found = run([*studies.arguments, "--subgroup", column, "--knapp-hartung", "adjusted", *TIGHT])
    means = []
    for group, t in zip(split(studies, labels, groups), found["Tau2Var"]):
        fit = exact.Fit([[mpf(1)]] * len(group), [y for y, _ in group], [1 / (v + mpf(t)) for _, v in group])
        means.append((fit.b[0], 1 / (fit.inverse[0, 0] * fit.squares() / fit.df), fit.df))
    weight, count = sum(u for _, u, _ in means), mpf(len(means))
    mean = sum(u * m for m, u, _ in means) / weight
    spread = sum((1 - u / weight)**2 / df for _, u, df in means)
    f = sum(u * (m - mean)**2 for m, u, _ in means) / (count - 1) / (1 + 2 * (count - 2) * spread / (count**2 - 1))
    df2 = (count**2 - 1) / (3 * spread)
    where = "%s, %s" % (studies.name, column)
    note("subgroups: F between", where + ", Welch", found["GDQbF"], f)
    note("subgroups: degrees of freedom of Welch's F", where, found["GDQbFDf2"], df2)
    note("significances (absolute)", where, found["GDQbFSig"], exact.upper_f(f, count - 1, df2), 1)


def tied_studies(folder):
    """Studies of which many are equal, in effect, variance or both."""
    rows = [[0.1, 1], [0.1, 1], [0.1, 0.5], [0.4, 0.5], [0.4, 0.25], [-0.3, 0.25], [-0.3, 2], [0.9, 2], [0.9, 2],
            [0.2, 4], [0.7, 4], [0.7, 0.125]]
    path = Path(folder) / "ties.csv"
    with open(path, "w", encoding="utf-8") as file:
        csv.writer(file).writerows([["y", "v"], *rows])

    class Ties:
        name, y, v = "ties", [mpf(row[0]) for row in rows], [mpf(row[1]) for row in rows]
        arguments = ["effects", str(path), "--effect-size", "y", "--variance", "v"]

    return Ties


def measure():
    with tempfile.TemporaryDirectory() as folder:
        for studies in [*studies_with_tables(), *studies_with_effects(), tied_studies(folder)]:
            print(studies.name, "ranks", file=sys.stderr)
            measure_rank_test(studies)
            measure_limit(studies)
    for studies in studies_with_tables():
        if "bcg_vaccine" in studies.name:
            labels = [row["allocation"] for row in read("bcg_vaccine")]
            for estimator in exact.ESTIMATORS:
                measure_common(studies, labels, "allocation", estimator)
            measure_welch(studies, labels, "allocation")
