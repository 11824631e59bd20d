#!/usr/bin/env python3
"""Pools a large grouped file, and as many sorted files, and checks that memory stays bounded.

memory.py PROGRAM FOLDER [--table FILE]      FOLDER as markers.py --rows writes it

Ends with 1 when either run takes 100 MB or more, or when their results differ.
"""

import argparse
import filecmp
import pathlib
import sys

from contest import Contest

MEGABYTES_ALLOWED = 100
COLUMNS = "--key SNP --effect-size BETA --std-error SE".split()
MODEL = "--tau2 reml --knapp-hartung adjusted".split()
OPTIONS = [*COLUMNS, *MODEL, "--threads", "2", "--output"]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--table", type=pathlib.Path)
    options = parser.parse_args()
    folder = options.folder
    studies = sorted((folder / "split").glob("*.tsv"))
    outputs = [folder / "grouped.out", folder / "sorted.out"]
    runs = [
        Contest("one grouped file", [options.program, "batch", folder / "grouped.tsv", *OPTIONS, outputs[0]]),
        Contest("sorted files", [options.program, "batch", *studies, "--sorted", *OPTIONS, outputs[1]]),
    ]
    with open(folder / "grouped.tsv", "rb") as file:
        rows = sum(1 for _ in file) - 1
    lines = [f"{rows:,} rows, 2 threads, REML with Knapp-Hartung, all columns", ""]
    lines.append(f"{'command':<20}{'seconds':>9}{'rows/s':>12}{'MB':>7}{'allowed':>9}{'met':>5}")
    for run in runs:
        run.run(folder)
        met = "yes" if run.megabytes < MEGABYTES_ALLOWED else "NO"
        speed = f"{run.seconds:9.2f}{rows / run.seconds:12,.0f}"
        lines.append(f"{run.name:<20}{speed}{run.megabytes:7.0f}{MEGABYTES_ALLOWED:9}{met:>5}")
    same = filecmp.cmp(*outputs, shallow=False)
    lines += ["", f"The results of both are {'the same' if same else 'NOT the same'}, byte for byte."]
    print("\n".join(lines))
    if options.table:
        options.table.write_text("\n".join(lines) + "\n")
    sys.exit(0 if same and all(run.megabytes < MEGABYTES_ALLOWED for run in runs) else 1)


main()
