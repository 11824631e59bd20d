#!/usr/bin/env python3
"""Times the program from a file of a million ready-made effect sizes to the text report.

million_report.py PROGRAM OUTPUT.json

The time is that of the processor, in the program and in the system for it; the memory is the most that was resident.
The result has the form of Google Benchmark, for report.py.
"""

import json
import os
import random
import subprocess
import sys
import tempfile

STUDIES = 1_000_000
REPETITIONS = 3


def write_studies(file):
    """Effects and variances of six decimals, the same in each run."""
    numbers = random.Random(1)
    file.write("study,effect,variance\n")
    for study in range(STUDIES):
        variance = 0.01 * 10 ** numbers.random()
        effect = numbers.gauss(0.2, (variance + 0.02) ** 0.5)
        file.write(f"Study {study},{effect:.6f},{variance:.6f}\n")


def run(program, path):
    """Processor time in seconds and resident memory in bytes."""
    command = [program, "effects", path, "--study", "study", "--effect-size", "effect", "--variance", "variance"]
    with subprocess.Popen(command, stdout=subprocess.DEVNULL) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{program} ended with status {process.returncode}.")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def main(program, output):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "million.csv")
        with open(path, "w", encoding="ascii") as file:
            write_studies(file)
        runs = [run(program, path) for _ in range(REPETITIONS)]
    name = f"ReportOfFile/{STUDIES}"
    rows = [
        {"name": name, "run_name": name, "run_type": "iteration", "cpu_time": seconds, "time_unit": "s",
         "bytes_per_study": memory / STUDIES}
        for seconds, memory in runs
    ]
    with open(output, "w", encoding="utf-8") as file:
        json.dump({"benchmarks": rows}, file, indent=1)


main(*sys.argv[1:])
