#!/usr/bin/env python3
"""Times the pooling of arrays, studies x sets, by one thread of the module: the figures of docs/scaling.md.

arrays.py       with the module in PYTHONPATH; the processor time of the fastest of five calls counts
"""

import time

import meta_analysis
import numpy

SHAPES = [(10, 200_000), (20, 100_000), (100, 20_000)]
REQUESTS = {
    "moments, estimate": {"tau2": "dl", "columns": ["estimate", "std_error"]},
    "REML, estimate, p, tau2": {"knapp_hartung": "adjusted", "columns": ["estimate", "std_error", "p", "tau2"]},
    "REML, all columns": {"knapp_hartung": "adjusted"},
}


def seconds_of_call(effects, variances, request):
    start = time.process_time()
    meta_analysis.pool(effects, variances, threads=1, **request)
    return time.process_time() - start


def main():
    random = numpy.random.default_rng(3)
    print(f"{'studies':>7}  {'results':<24}{'sets/s':>12}{'MB/s read':>11}")
    for studies, sets in SHAPES:
        variances = random.uniform(0.01, 0.2, (studies, sets))
        tau2 = 0.02 * random.integers(0, 2, sets)
        effects = random.normal(0, numpy.sqrt(variances + tau2))
        for name, request in REQUESTS.items():
            seconds = min(seconds_of_call(effects, variances, request) for _ in range(5))
            megabytes = (effects.nbytes + variances.nbytes) / 1e6
            print(f"{studies:>7}  {name:<24}{sets / seconds:12,.0f}{megabytes / seconds:11,.0f}")


main()
