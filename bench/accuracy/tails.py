#!/usr/bin/env python3
"""Measures the errors of upper tails and of their logarithms: this library, the GNU Scientific Library and R.

usage: tails.py TAIL_VALUES

All three get the same random points and are compared with 60-digit arithmetic. Prints a table of the largest relative
errors by distribution and by the size of the tail.
"""

import math
import random
import subprocess
import sys
from pathlib import Path

from mpmath import mp, mpf

from exact_tails import DIGITS, log_tail

POINTS = 800  # a distribution
RANGES = [("body", -2), ("tail", -100), ("far tail", -300), ("log10, beyond", -math.inf)]
NAMES = {"StdNorm": "normal", "Chi": "chi-square", "T": "t", "F": "F"}
DF_COUNT = {"StdNorm": 0, "Chi": 1, "T": 1, "F": 2}


def degrees(draw):
    """0.5 to 1e6, a third of them whole ones to 30."""
    if draw.random() < 1 / 3:
        return float(draw.randint(1, 30))
    return 10 ** draw.uniform(math.log10(0.5), 6)


def random_log10_tail(draw):
    """In equal shares a body, a tail down to 1e-300, and one beyond."""
    kind = draw.randrange(3)
    if kind == 0:
        return math.log10(draw.random())
    return -draw.uniform(2, 300) if kind == 1 else -10 ** draw.uniform(math.log10(300), 6)


def point_near(distribution, df, log10_tail):
    """An argument whose tail is about so large, by bisection in 15-digit arithmetic; None where no double has it."""
    def argument(s):
        if distribution in ("Chi", "F"):
            return math.exp(s)
        return math.copysign(math.expm1(abs(s)), s)

    low, high = -690.0, 690.0
    with mp.workdps(15):
        wanted = log10_tail * math.log(10)
        if log_tail(distribution, argument(high), *df) > wanted:
            return None
        while high - low > 1e-8 * (abs(low) + 0.01):
            middle = (low + high) / 2
            if log_tail(distribution, argument(middle), *df) > wanted:
                low = middle
            else:
                high = middle
    return argument(low)


def points(draw):
    made = []
    for distribution, count in DF_COUNT.items():
        while sum(point[0] == distribution for point in made) < POINTS:
            df = [degrees(draw) for _ in range(count)]
            x = point_near(distribution, df, random_log10_tail(draw))
            if x is not None:
                made.append((distribution, x, *df))
    return made


def values(command, made):
    lines = "".join(" ".join([point[0], *(repr(number) for number in [*point[1:], 1.0, 1.0][:3])]) + "\n"
                    for point in made)
    done = subprocess.run(command, input=lines, capture_output=True, text=True, check=True)
    return [[float(field) for field in line.split()] for line in done.stdout.splitlines()]


def relative_error(actual, expected):
    return abs(mpf(actual) / expected - 1) if math.isfinite(actual) else mpf(1)


def errors(logarithm, own, of_r):
    """Of the library, GSL and R; GSL has no logarithms."""
    log10_tail = logarithm / mp.log(10)
    if log10_tail >= -300:
        tail = mp.exp(logarithm)
        return [relative_error(own[0], tail), relative_error(own[2], tail), relative_error(of_r[0], tail)]
    return [relative_error(own[1], log10_tail), None, relative_error(of_r[1], logarithm)]


def main():
    mp.dps = DIGITS
    made = points(random.Random(1))
    own = values([sys.argv[1]], made)
    of_r = values(["Rscript", str(Path(__file__).with_name("tail_values.R"))], made)
    worst = {}
    for point, mine, theirs in zip(made, own, of_r, strict=True):
        logarithm = log_tail(*point)
        size = next(name for name, limit in RANGES if logarithm / mp.log(10) >= limit)
        key = point[0], size
        found = errors(logarithm, mine, theirs)
        count, largest = worst.get(key, (0, found))
        worst[key] = count + 1, [None if a is None else max(a, b) for a, b in zip(found, largest)]
    print("| tail of | size | points | this library | GSL | R |\n|---|---|---|---|---|---|")
    for distribution, name in NAMES.items():
        for size, _ in RANGES:
            count, largest = worst[distribution, size]
            texts = ["-" if error is None else mp.nstr(error, 2) for error in largest]
            print("| %s | %s | %d | %s |" % (name, size, count, " | ".join(texts)))


main()
