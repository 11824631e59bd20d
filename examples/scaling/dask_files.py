#!/usr/bin/env python3
"""Pools files by the program on a cluster of Dask, a file a task.

dask_files.py SCHEDULER_FILE FOLDER FILE...      writes FOLDER/NAME for every FILE of that name

The program writes a result under its final name when it is complete, so that a task that a lost worker has begun may be
done again by another.
"""

import pathlib
import subprocess
import sys

from distributed import Client

OPTIONS = "--key SNP --effect-size BETA --std-error SE --tau2 reml --knapp-hartung adjusted --threads 1".split()


def pool_file(path, output):
    subprocess.run(["meta-analysis", "batch", path, *OPTIONS, "--output", output], check=True)
    return output


def main(scheduler_file, folder, *paths):
    outputs = [str(pathlib.Path(folder) / pathlib.Path(path).name) for path in paths]
    with Client(scheduler_file=scheduler_file) as client:
        for output in client.gather(client.map(pool_file, paths, outputs)):
            print(output)


main(*sys.argv[1:])
