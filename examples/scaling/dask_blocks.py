#!/usr/bin/env python3
"""Pools every column of two arrays, studies x sets, on a cluster of Dask.

dask_blocks.py SCHEDULER_FILE EFFECTS.npy VARIANCES.npy RESULTS.npz [SETS_OF_A_TASK]

The arrays lie where all workers see them. A task maps them into memory, reads its sets and returns their results; what
travels over the network are those results. Whatever a lost worker had done or was about to do is done again by others.
"""

import sys

import meta_analysis
import numpy
from distributed import Client


def pool_block(effects_path, variances_path, first, last):
    effects = numpy.load(effects_path, mmap_mode="r")[:, first:last]
    variances = numpy.load(variances_path, mmap_mode="r")[:, first:last]
    results = meta_analysis.pool(effects, variances, tau2="reml", knapp_hartung="adjusted", threads=1)
    return {name: getattr(results, name) for name in results.columns}


def main(scheduler_file, effects_path, variances_path, results_path, sets_of_a_task="100000"):
    sets = numpy.load(effects_path, mmap_mode="r").shape[1]
    firsts = range(0, sets, int(sets_of_a_task))
    with Client(scheduler_file=scheduler_file) as client:
        tasks = [
            client.submit(pool_block, effects_path, variances_path, first, min(first + firsts.step, sets))
            for first in firsts
        ]
        blocks = client.gather(tasks)
    numpy.savez(results_path, **{name: numpy.concatenate([block[name] for block in blocks]) for name in blocks[0]})


main(*sys.argv[1:])
