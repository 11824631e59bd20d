#!/usr/bin/env python3
"""Prints tests/reference/tails.csv: upper tails and their decimal logarithms from 60-digit arithmetic."""

from mpmath import mp

from exact_tails import DIGITS, log_tail

SMALLEST_NORMAL = 2.0**-1022
POINTS = [
    *[("StdNorm", z) for z in (-40, -6, -0.3, 0, 1.96, 5, 8.3, 21.7, 37.5, 38.6, 200, 1e4, 1e150)],
    *[("Chi", x, df) for x, df in (
        (0.1, 0.5), (3, 0.5), (700, 0.5), (3.84, 1), (1400, 1), (7, 7), (1e5, 7), (1e300, 7), (160, 90.5), (1e5, 1000),
        (1500, 1000), (2500, 2001), (17387.4, 10984), (1e5, 1e5), (1.002e6, 1e6), (1.05e6, 1e6), (1e9, 1e6))],
    *[("T", t, df) for t, df in (
        (-3, 0.5), (1e200, 0.5), (1e308, 0.5), (0.7, 1), (6.3, 1), (1e300, 1), (2.4, 3.5), (1e80, 3.5), (1e200, 3.5),
        (2.4, 40), (150, 40), (1e12, 40), (2.5, 1e6), (8.3, 1e6), (37.4, 1e6), (200, 1e6), (1e4, 1e6), (1e300, 1e6))],
    *[("F", f, df1, df2) for f, df1, df2 in (
        (0.3, 0.5, 0.5), (1e300, 0.5, 0.5), (1e308, 1e6, 0.5), (4, 3, 7), (1e90, 3, 7), (1e300, 3, 7), (60, 1, 200),
        (1e5, 1, 200), (9, 12.5, 300), (1.3, 176000, 55000), (1.112, 820000, 360000), (3.8, 75200, 2330),
        (1.003, 1e6, 1e6), (1.07, 1e6, 1e6), (2, 1e6, 1e6), (1e300, 1e6, 1e6), (700, 2, 1e6), (1e5, 2, 1e6))],
]

mp.dps = DIGITS
print("distribution,x,df1,df2,tail,log10_tail")
for point in POINTS:
    logarithm = log_tail(*point)
    tail = mp.exp(logarithm)
    printed = mp.nstr(tail, 20) if tail >= SMALLEST_NORMAL else ""
    padding = [""] * (4 - len(point))
    print(",".join([point[0], *(repr(float(x)) for x in point[1:]), *padding, printed,
                    mp.nstr(logarithm / mp.log(10), 20)]))
