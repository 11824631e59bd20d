"""What the measurements share: the data, the program, and the table of the largest errors."""

import csv
import json
import subprocess
import sys
from pathlib import Path

from mpmath import mp, mpf

import exact

DATA = Path(__file__).resolve().parents[2] / "tests" / "data"
TIGHT = ["--tau2-search", "scoring", "--tolerance", "1e-14", "--max-iterations", "10000", "--max-step-halving", "100"]
Z = exact.normal_quantile(mpf("0.975"))


def upper_normal(z):
    return mp.erfc(z / mp.sqrt(2)) / 2


class Quantiles(dict):
    """Quantiles of t for 95% intervals, by degrees of freedom."""

    def __missing__(self, df):
        self[df] = exact.t_quantile(mpf("0.975"), df)
        return self[df]


T = Quantiles()
PROGRAM = sys.argv[1]
worst = {}  # by quantity: largest error, where, number of values
analyses = 0


def note(quantity, where, actual, expected, scale=None):
    """Records an error: relative to the scale, or to the exact value without one."""
    if expected is None or actual is None:
        raise ArithmeticError("%s of %s: %s, expected %s" % (quantity, where, actual, expected))
    size = abs(expected) if scale is None else scale
    error = abs(mpf(actual) - expected) / size if size != 0 else abs(mpf(actual))
    largest, place, count = worst.get(quantity, (mpf(-1), "", 0))
    worst[quantity] = (max(error, largest), where if error > largest else place, count + 1)


def run(arguments):
    global analyses
    analyses += 1
    done = subprocess.run([PROGRAM, *arguments, "--json", "-"], capture_output=True, text=True, check=True)
    return json.loads(done.stdout)["results"]


def read(name):
    with open(DATA / (name + ".csv"), encoding="utf-8") as file:
        return list(csv.DictReader(file))


def values(row, columns):
    return [mpf(float(row[column])) for column in columns]


def note_tau2(studies, estimator, tight, loose, expected):
    where = "%s, %s" % (studies.name, estimator.upper())
    if estimator not in exact.ITERATIVE:
        note(studies.kind + ": τ², closed forms", where, tight, expected)
        return
    typical = sorted(studies.v)[len(studies.v) // 2]
    if expected == 0:
        note(studies.kind + ": τ² where 0 is exact, over the median v", where, loose, expected, typical)
    else:
        note(studies.kind + ": τ², scoring, tolerance 1e-14", where, tight, expected)
        note(studies.kind + ": τ², global search", where, loose, expected)


def position(quantity):
    """The position of a quantity's row in the table."""
    parts = ["conversions", "effects of", "natural scale", "fixed effects", "Mantel-Haenszel", "Q", "H² and bounds", "I² and bounds",
             "pooling", "random effects", "Knapp", "prediction", "H² and I²", "significances", "subgroups",
             "contrasts", "influence", "small-study", "trim", "meta-regression"]
    return next(i for i, part in enumerate(parts) if quantity.startswith(part))


def print_table():
    print("Errors in %d analyses." % analyses)
    print("\n| quantity | values | largest error | where |\n|---|---|---|---|")
    for quantity, (error, where, count) in sorted(worst.items(), key=lambda item: position(item[0])):
        size, place = (mp.nstr(error, 2), where) if error > 0 else ("0", "")
        print("| %s | %d | %s | %s |" % (quantity, count, size, place))
