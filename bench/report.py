#!/usr/bin/env python3
"""Prints one table of what the benchmarks measured, and writes the same as JSON.

report.py OUTPUT.json TARGETS.json BENCHMARK.json...

Of repetitions the fastest counts: what else runs on a machine makes a benchmark slower, never faster. A time is
set against that of the bare loop in the same run, where there is one (of scoring, for the search of tau²), and
against the target, which is a time or a ratio of the two.
"""

import json
import sys

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
COLUMNS = ["name", "time", "bare loop", "ratio", "target", "met", "evaluations", "sets/s", "bytes/study"]


def measured_rows(path):
    """One row for each benchmark of a file: the fastest repetition. Ends the program when a benchmark failed."""
    rows = {}
    with open(path, encoding="utf-8") as file:
        benchmarks = json.load(file)["benchmarks"]
    for entry in benchmarks:
        if entry.get("error_occurred"):
            sys.exit(f"{entry['name']}: {entry['error_message']}")
        if entry["run_type"] != "iteration":
            continue
        name = entry["run_name"].removesuffix("/manual_time")
        row = rows.setdefault(name, {"name": name})
        mean = entry["cpu_time"] * NANOSECONDS[entry["time_unit"]] * 1e-9
        keep_least(row, "seconds", entry.get("seconds", mean))
        if "bare_seconds" in entry:
            keep_least(row, "bare_seconds", entry["bare_seconds"])
        for counter in ("bytes_per_study", "evaluations"):
            if counter in entry:
                row[counter] = entry[counter]
        if "sets" in entry:
            row["sets_per_second"] = entry["sets"] / row["seconds"]
    return rows.values()


def keep_least(row, key, value):
    row[key] = min(value, row.get(key, value))


def judge(row, target):
    """Adds the ratio to the bare loop, the target and whether it is met."""
    if "bare_seconds" in row:
        row["ratio"] = row["seconds"] / row["bare_seconds"]
    if target:
        row["target"] = target
        row["met"] = all(row[quantity] <= bound for quantity, bound in target.items())


def time_text(seconds):
    for factor, unit in ((1e9, "ns"), (1e6, "µs"), (1e3, "ms")):
        if seconds * factor < 1000:
            return f"{seconds * factor:.3g} {unit}"
    return f"{seconds:.3g} s"


def target_text(target):
    texts = [time_text(target["seconds"])] if "seconds" in target else []
    texts += [f"{target['ratio']:.2f}"] if "ratio" in target else []
    texts += [f"{target['bytes_per_study']:.0f} B"] if "bytes_per_study" in target else []
    return ", ".join(texts)


def cells(row):
    return [
        row["name"],
        time_text(row["seconds"]),
        time_text(row["bare_seconds"]) if "bare_seconds" in row else "",
        f"{row['ratio']:.2f}" if "ratio" in row else "",
        target_text(row["target"]) if "target" in row else "",
        ("yes" if row["met"] else "NO") if "met" in row else "",
        f"{row['evaluations']:.0f}" if "evaluations" in row else "",
        f"{row['sets_per_second'] / 1e6:.2f} M" if "sets_per_second" in row else "",
        f"{row['bytes_per_study']:.0f}" if "bytes_per_study" in row else "",
    ]


def print_table(rows):
    lines = [COLUMNS] + [cells(row) for row in rows]
    widths = [max(len(line[i]) for line in lines) for i in range(len(COLUMNS))]
    for line in lines:
        print(line[0].ljust(widths[0]), *(text.rjust(width) for text, width in zip(line[1:], widths[1:])), sep="  ")


def main(output, targets_path, *paths):
    with open(targets_path, encoding="utf-8") as file:
        targets = json.load(file)
    rows = [row for path in paths for row in measured_rows(path)]
    for row in rows:
        judge(row, targets.get(row["name"], {}))
    print_table(rows)
    with open(output, "w", encoding="utf-8") as file:
        json.dump(rows, file, indent=1)


main(*sys.argv[1:])
