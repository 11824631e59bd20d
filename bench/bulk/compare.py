#!/usr/bin/env python3
"""Times pooling of markers beside plink and GWAMA, and checks that all three agree to their printed digits.

compare.py PROGRAM FOLDER [--rounds N] [--table FILE]      FOLDER as markers.py writes it

A round runs every command once, so that what else the machine does meets all of them. Of the rounds the fastest counts:
other work makes a command slower, never faster. plink and GWAMA pool by the fixed and the moment model; the program by
REML with the adjustment after Knapp and Hartung and with all columns, or only counts the studies, which is the time of
reading and finding keys. Ends with 1 when figures disagree.
"""

import argparse
import os
import pathlib
import subprocess
import sys

import agreement
from contest import Contest

TARGETED_MARKERS = 100_000
INFERENCE = "--tau2 reml --knapp-hartung adjusted".split()
COLUMNS = "--key SNP --effect-size BETA --std-error SE --effect-allele A1 --other-allele A2".split()


def contests(program, folder, results):
    plain, packed, ordered = (sorted(folder.glob(files)) for files in ("genome/*.tsv", "genome/*.gz", "sorted/*.tsv"))
    listed = results / "studies"
    listed.write_text("".join(f"{path}\n" for path in plain))

    def plink(files, name):
        return ["plink1.9", "--threads", "1", "--out", results / name, "--meta-analysis", *files, "+", "qt", "report-all"]

    def pool(files, threads, *options):
        output = results / "pooled.tsv"
        return [program, "batch", *files, *COLUMNS, *INFERENCE, "--threads", str(threads), "--output", output, *options]

    gwama = "GWAMA -qt -r --name_marker SNP --name_ea A1 --name_nea A2 --name_beta BETA --name_se SE --name_n N".split()
    return [
        Contest("plink1.9", plink(plain, "plink")),
        Contest("GWAMA -r", [*gwama, "-i", listed, "-o", results / "gwama"], "plink1.9"),
        Contest("batch, 1 thread", pool(plain, 1), "plink1.9", 3.0),
        Contest("batch, 2 threads", pool(plain, 2), "plink1.9", 5.0),
        Contest("batch --sorted, 1 thread", pool(ordered, 1, "--sorted"), "plink1.9", 3.0),
        Contest("batch --sorted, 2 threads", pool(ordered, 2, "--sorted"), "plink1.9", 5.0),
        Contest("batch, counts alone", pool(plain, 1, "--columns", "k"), "plink1.9"),
        Contest("plink1.9, gzip", plink(packed, "plink_gzip")),
        Contest("batch, gzip, 1 thread", pool(packed, 1), "plink1.9, gzip"),
        Contest("batch, gzip, 2 threads", pool(packed, 2), "plink1.9, gzip"),
    ]


def table(entries, markers):
    """The lines of the table, and the names of those that miss their target."""
    seconds = {entry.name: entry.seconds for entry in entries}
    heads = f"{'command':<26}{'seconds':>9}{'of CPU':>8}{'markers/s':>12}{'MB':>6}{'x plink':>9}{'target':>8}{'met':>5}"
    lines = [heads]
    missed = []
    for entry in entries:
        line = f"{entry.name:<26}{entry.seconds:9.3f}{entry.processor_seconds:8.2f}"
        line += f"{markers / entry.seconds:12,.0f}{entry.megabytes:6.0f}"
        if entry.beside:
            ratio = seconds[entry.beside] / entry.seconds
            line += f"{ratio:9.2f}"
            if entry.target:
                met = ratio >= entry.target
                line += f"{entry.target:8.1f}{'yes' if met else 'NO':>5}"
                missed += [] if met else [f"{entry.name} ({ratio:.2f} of {entry.target:.1f})"]
        lines.append(line)
    return lines, missed


def compare_figures(program, folder, results):
    """Pools by the peers' own models. Returns the sentences of the comparison and whether all figures agree."""
    files = sorted(folder.glob("genome/*.tsv"))
    ours = {}
    for model, options in {"fixed": ["--model", "fixed"], "moments": ["--tau2", "dl"]}.items():
        output = results / f"{model}.tsv"
        subprocess.run([program, "batch", *files, *COLUMNS, *options, "--output", output], check=True)
        ours[model] = output
    return agreement.compare(ours["fixed"], ours["moments"], results / "plink.meta", results / "gwama.out")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--table", type=pathlib.Path)
    options = parser.parse_args()
    results = options.folder / "results"
    results.mkdir(exist_ok=True)
    entries = contests(options.program, options.folder, results)
    for _ in range(options.rounds):
        for entry in entries:
            entry.run(results)
    sentences, markers, agree = compare_figures(options.program, options.folder, results)
    lines, missed = table(entries, markers)
    lines = [f"{markers:,} markers, fastest of {options.rounds} rounds, {os.cpu_count()} processors", "", *lines, ""]
    lines += [f"Missed: {', '.join(missed)}" if missed else "All targets are met."]
    if markers < TARGETED_MARKERS:
        lines += [f"Targets are for {TARGETED_MARKERS:,} markers: with fewer, programs start for most of the time."]
    lines += ["", *sentences]
    print("\n".join(lines))
    if options.table:
        options.table.write_text("\n".join(lines) + "\n")
    sys.exit(0 if agree else 1)


main()
