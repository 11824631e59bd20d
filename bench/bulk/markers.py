#!/usr/bin/env python3
"""Writes made-up summary statistics of genetic markers, the same from the same seed, as tables of studies.

markers.py FOLDER [--markers N] [--studies N] [--seed N]   genome/: a file a study in the order of the genome, also
                                                           packed; sorted/: the same rows by key
markers.py FOLDER --rows N [--seed N]                      grouped.tsv: one file of about N rows, those of a marker
                                                           together; split/: the same rows, a file for each of ten
                                                           studies

A marker has a frequency f of its effect allele between 0.05 and 0.95, a mean effect from N(0, 0.02²) and, half of the
markers, a standard deviation tau of 0.02 between studies. A study has n people, between 2,000 and 50,000. Its effect
is from N(mean, tau² + se²) with se² = 1 / (2 f (1 - f) n). Of each study 5 % of the markers are missing. Files with
alleles have them swapped, and the sign of the effect with them, in 2 % of their rows; one pair in six is A/T or C/G.
"""

import argparse
import contextlib
import gzip
import math
import pathlib

import numpy

HEADER = "SNP\tCHR\tBP\tA1\tA2\tBETA\tSE\tP\tN\n"
ROW = "rs%d\t%d\t%d\t%s\t%s\t%.5f\t%.5f\t%.4g\t%d\n"
PAIRS = numpy.array(["A C", "A G", "C T", "G T", "A T", "C G"])
PAIR_SHARES = numpy.array([5, 5, 5, 5, 2, 2]) / 24
GROUPED_STUDIES = 10
CHROMOSOMES = 22
MARKERS_AT_ONCE = 50_000
SHARE_MISSING = 0.05
SHARE_SWAPPED = 0.02

normal_tails = numpy.vectorize(lambda z: math.erfc(abs(z) / math.sqrt(2)))


class Markers:
    """What all studies have in common. Numbers of nine digits make the order of bytes that of numbers."""

    def __init__(self, random, count):
        self.id = 100_000_000 + random.choice(8 * count, count, replace=False)
        self.chromosome = 1 + numpy.arange(count) * CHROMOSOMES // count
        self.position = 10_000 + 97 * numpy.arange(count)
        self.alleles = numpy.char.split(random.choice(PAIRS, count, p=PAIR_SHARES))
        self.frequency = random.uniform(0.05, 0.95, count)
        self.mean = random.normal(0, 0.02, count)
        self.tau = 0.02 * random.integers(0, 2, count)


def effects(random, markers, people):
    variance = 1 / (2 * markers.frequency * (1 - markers.frequency) * people)
    return random.normal(markers.mean, numpy.sqrt(variance + markers.tau**2)), numpy.sqrt(variance)


def rows_of_study(random, markers):
    """The lines of a study, with their markers, in the order of the genome."""
    count = len(markers.id)
    people = int(math.exp(random.uniform(math.log(2_000), math.log(50_000))))
    effect, error = effects(random, markers, people)
    tails = normal_tails(effect / error)
    swapped = random.random(count) < SHARE_SWAPPED
    present = random.random(count) >= SHARE_MISSING
    rows = []
    for i in numpy.flatnonzero(present):
        first, second = markers.alleles[i]
        value = effect[i]
        if swapped[i]:
            first, second, value = second, first, -value
        place = (markers.id[i], markers.chromosome[i], markers.position[i])
        rows.append((*place, first, second, value, error[i], tails[i], people))
    return rows


def text_of(rows):
    return (HEADER + "".join(map(ROW.__mod__, rows))).encode()


def write_studies(folder, markers, studies, seed):
    random = numpy.random.default_rng(seed)
    common = Markers(random, markers)
    for order in ("genome", "sorted"):
        (folder / order).mkdir(parents=True, exist_ok=True)
    for study in range(studies):
        rows = rows_of_study(random, common)
        text = text_of(rows)
        (folder / "genome" / f"study{study:03}.tsv").write_bytes(text)
        (folder / "genome" / f"study{study:03}.tsv.gz").write_bytes(gzip.compress(text, compresslevel=6, mtime=0))
        (folder / "sorted" / f"study{study:03}.tsv").write_bytes(text_of(sorted(rows)))


def write_block(files, columns, present):
    """Writes an array of markers x studies x columns, all to the first file and a study to each of the others."""
    line = "rs%09d\tstudy%d\t%.5f\t%.5f\n"
    for study, file in enumerate(files, start=-1):
        part = columns[present] if study < 0 else columns[present[:, study], study]
        file.write(line * len(part) % tuple(part.ravel().tolist()))


def write_grouped(folder, rows, seed):
    random = numpy.random.default_rng(seed)
    people = random.integers(2_000, 50_000, GROUPED_STUDIES)[:, numpy.newaxis]
    (folder / "split").mkdir(parents=True, exist_ok=True)
    paths = [folder / "grouped.tsv", *(folder / "split" / f"study{study:03}.tsv" for study in range(GROUPED_STUDIES))]
    with contextlib.ExitStack() as stack:
        files = [stack.enter_context(open(path, "w", encoding="ascii")) for path in paths]
        for file in files:
            file.write("SNP\tSTUDY\tBETA\tSE\n")
        markers = round(rows / (GROUPED_STUDIES * (1 - SHARE_MISSING)))
        for first in range(0, markers, MARKERS_AT_ONCE):
            count = min(MARKERS_AT_ONCE, markers - first)
            effect, error = effects(random, Markers(random, count), people)
            columns = numpy.empty((count, GROUPED_STUDIES, 4))
            columns[..., 0] = numpy.arange(first, first + count)[:, numpy.newaxis]
            columns[..., 1] = numpy.arange(GROUPED_STUDIES)
            columns[..., 2] = effect.T
            columns[..., 3] = error.T
            write_block(files, columns, random.random((count, GROUPED_STUDIES)) >= SHARE_MISSING)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--markers", type=int, default=100_000)
    parser.add_argument("--studies", type=int, default=10)
    parser.add_argument("--rows", type=int)
    parser.add_argument("--seed", type=int, default=20)
    options = parser.parse_args()
    if options.rows:
        write_grouped(options.folder, options.rows, options.seed)
    else:
        write_studies(options.folder, options.markers, options.studies, options.seed)


if __name__ == "__main__":
    main()
