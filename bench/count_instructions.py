#!/usr/bin/env python3
"""Counts the instructions of the library's work and of the bare loops, and compares their ratios with the kept ones.

count_instructions.py DRIVER KEPT.json BUILD [--update]

A ratio of instructions, unlike one of times, is the same at every run of a build; it belongs to the compiler, the
options and the processor that BUILD names. Fails when one has grown by more than a tenth over the kept one. With
--update the counted ratios replace those of KEPT.json. Ends with status 77, for "skipped", in another build than the
kept one.
"""

import json
import re
import subprocess
import sys
import tempfile

SKIPPED = 77
GROWTH = 1.1
COUNTED = re.compile(r"cfn=.*\bCount(Library|BareLoop)<(\w+), (\d+)ul>")


def inclusive_counts(driver):
    """Instructions by work and side, of the function that does it and all that it calls."""
    with tempfile.NamedTemporaryFile(mode="r", encoding="utf-8") as profile:
        subprocess.run(
            ["valgrind", "--quiet", "--tool=callgrind", "--compress-strings=no", "--compress-pos=no",
             f"--callgrind-out-file={profile.name}", driver],
            check=True)
        lines = profile.read().splitlines()
    counts = {}
    for i, line in enumerate(lines):
        called = COUNTED.match(line)
        if called:  # followed by the number of calls, then by the position of the call and its cost
            side, work, studies = called.groups()
            counts.setdefault(f"{work}/{studies}", {})[side] = int(lines[i + 2].split()[1])
    return counts


def counted_ratios(driver):
    return {work: round(sides["Library"] / sides["BareLoop"], 3)
            for work, sides in inclusive_counts(driver).items()}


def compare(ratios, kept):
    """Prints each ratio beside the kept one; the number of those that have grown too much."""
    grown = 0
    for work, ratio in sorted(ratios.items()):
        before = kept.get(work, 0.0)
        verdict = "has grown" if ratio > GROWTH * before else "holds"
        grown += verdict != "holds"
        print(f"{work:20} {ratio:8.3f} instructions for each of the bare loop, kept {before:8.3f}: {verdict}")
    return grown


def main(driver, kept_path, build, update=""):
    with open(kept_path, encoding="utf-8") as file:
        kept = json.load(file)
    if not update and build != kept["build"]:
        print(f"The kept ratios belong to '{kept['build']}', this is '{build}'.")
        return SKIPPED
    ratios = counted_ratios(driver)
    if update:
        with open(kept_path, "w", encoding="utf-8") as file:
            json.dump({"build": build, "ratios": dict(sorted(ratios.items()))}, file, indent=4)
            file.write("\n")
        return 0
    if compare(ratios, kept["ratios"]) or ratios.keys() != kept["ratios"].keys():
        print(f"Where the growth is meant, keep the new ratios:\n"
              f"  bench/count_instructions.py {driver} bench/instructions.json '{build}' --update")
        return 1
    return 0


sys.exit(main(*sys.argv[1:]))
