import csv
import json
import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest

ROOT = pathlib.Path(__file__).parents[2]
#: Of the reference figures: their program stops its iterations at a step of 1e-12, and prints 15 digits.
FIGURES = 1e-8


def column(data_set, name):
    with open(ROOT / "tests/data" / f"{data_set}.csv", newline="") as file:
        return np.array([float(row[name]) for row in csv.DictReader(file)])


def effects_of(data_set):
    return column(data_set, "effect"), column(data_set, "variance")


def figures_of(data_set):
    return json.loads((ROOT / "tests/reference" / f"{data_set}.json").read_text())


def run_program(*arguments):
    """Return the results of the program's JSON."""
    program = os.environ.get("META_ANALYSIS_PROGRAM")
    if not program:
        pytest.skip("META_ANALYSIS_PROGRAM does not name the program")
    command = [program, *arguments, "--json", "-"]
    return json.loads(subprocess.run(command, cwd=ROOT, capture_output=True, check=True).stdout)["results"]


def run_python(code, *options, **environment):
    """Run code in an interpreter of its own, warnings being errors, and return what it prints."""
    run = subprocess.run([sys.executable, "-W", "error", *options, "-c", code],
                         env={**os.environ, **environment}, capture_output=True, text=True)
    assert run.returncode == 0 and run.stderr == "", run.stderr
    return run.stdout
