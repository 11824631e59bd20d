"""Compares the program's figures with those that plink and GWAMA print, marker by marker, to the last printed digit."""

import csv

import numpy

# A peer rounds the same real number: half a unit of its last digit, and what two sums of doubles may differ by.
SLACK = 1e-9


def decimals(count):
    """The unit of the last digit, of numbers printed with a fixed number of decimals."""
    return lambda values: numpy.full(len(values), 10.0**-count)


def significant(count):
    """The unit of the last digit, of numbers printed with a number of significant digits."""
    return lambda values: 10.0 ** (numpy.floor(numpy.log10(numpy.maximum(values, 1e-300))) + 1 - count)


PLINK = [
    # column of plink, model and column of the program, factor of the program's value, unit of plink's last digit
    ("BETA", "fixed", "estimate", 1, decimals(4)),
    ("P", "fixed", "p", 1, significant(4)),
    ("BETA(R)", "moments", "estimate", 1, decimals(4)),
    ("P(R)", "moments", "p", 1, significant(4)),
    ("Q", "moments", "q_p", 1, decimals(4)),
    ("I", "moments", "i2", 100, decimals(2)),
]
GWAMA = [
    ("beta", "moments", "estimate", 1, decimals(6)),
    ("se", "moments", "std_error", 1, decimals(6)),
    ("q_statistic", "moments", "q", 1, decimals(6)),
    ("i2", "moments", "i2", 1, decimals(6)),
]


def read(path, key, separator):
    """The columns of a table by name, with the rows in the order of their keys."""
    with open(path, encoding="ascii", newline="") as file:
        if separator == " ":
            rows = [line.split() for line in file]
        else:
            rows = list(csv.reader(file, delimiter=separator))
    head, rows = rows[0], rows[1:]
    position = head.index(key)
    rows.sort(key=lambda row: row[position])
    return dict(zip(head, zip(*rows)))


def numbers(column):
    return numpy.array([float("nan") if text == "NA" else float(text) for text in column])


def disagreements(peer, ours, unit):
    """The rows whose figures differ by more than rounding. A missing figure agrees with a missing one alone."""
    apart = numpy.abs(peer - ours) > unit(numpy.abs(peer)) * 0.5 + SLACK * numpy.maximum(1e-300, numpy.abs(ours))
    return numpy.flatnonzero(apart | (numpy.isnan(peer) != numpy.isnan(ours)))


def compare(fixed, moments, plink, gwama):
    """Returns sentences, the number of markers, and whether every figure of every marker agrees."""
    ours = {"fixed": read(fixed, "SNP", "\t"), "moments": read(moments, "SNP", "\t")}
    keys = ours["moments"]["SNP"]
    sentences, agree = [], True
    for name, table, key, checks in (
        ("plink", read(plink, "SNP", " "), "SNP", PLINK),
        ("GWAMA", read(gwama, "rs_number", "\t"), "rs_number", GWAMA),
    ):
        if table[key] != keys:
            return [f"{name} has other markers."], len(keys), False
        for column, model, result, factor, unit in checks:
            rows = disagreements(numbers(table[column]), factor * numbers(ours[model][result]), unit)
            for row in rows[:3]:
                sentences.append(f"  {keys[row]}: {name} {table[column][row]}, {factor} x {ours[model][result][row]}")
            sentences.append(f"{name} {column}: {len(keys) - len(rows)} of {len(keys)} agree with {result}, {model}")
            agree = agree and len(rows) == 0
    return sentences, len(keys), agree
