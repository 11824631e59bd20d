#!/usr/bin/env python3
"""Validates what the program writes as JSON against its schema, for every command, and the schema against it.

usage: json_schema_check.py PROGRAM SCHEMA DATA-FOLDER

Each output is valid; its lists line up with the studies; and no key of it can go, come or change its type
without the schema's refusing it.
"""

import copy
import json
import subprocess
import sys
import tempfile
from pathlib import Path

from jsonschema import Draft202012Validator

TABLE = ("--treatment-events treatment_events --treatment-nonevents treatment_nonevents "
         "--control-events control_events --control-nonevents control_nonevents ")
MEANS = "".join(f"--{group}-{part} {group}_{part} " for group in ("treatment", "control") for part in ("n", "mean", "sd"))
RATES = ("--treatment-events treatment_events --treatment-time treatment_time "
         "--control-events control_events --control-time control_time ")
EFFECTS = "--effect-size effect --variance variance "
STEPS = "--leave-one-out --influence --rank-test --trim-fill linear --small-study-test 0 "

# Duplicates, bytes that are no UTF-8, quotes and no label at all; missing, infinite and impossible values.
GAPS = (b"who,effect,variance,year,group,one\n"
        b"A,0.1,0.2,2001,x,1\nA,0.4,0.1,,y,1\n\xff\"\xe9,0.3,0.3,2003,,NA\n,NA,0.2,2004,x,1\nE,0.2,-1,2005,y,1\n"
        b"F,800,0.2,2006,x,1\nG,0.2,0.4,2007,y,1\nH,0.5,0.4,,NA,-4\n").replace(b'\xff"\xe9', b'"\xff""\xe9"')

# The exit status, and the arguments; GAPS and ONE are files made here.
CASES = [
    (0, f"binary bcg_vaccine.csv --study study {TABLE}--subgroup allocation --bubble latitude {STEPS}"
        "--contours two-sided --probability-above 1"),
    (0, f"binary bcg_vaccine.csv {TABLE}--model fixed --weights mantel-haenszel --contrast year --cumulative year"),
    (0, f"continuous elevated_co2.csv {MEANS}--subgroup genus --common-tau2 {STEPS}"),
    (0, f"rates warfarin_stroke.csv {RATES}--model fixed --weights mantel-haenszel --leave-one-out"),
    (0, f"proportion hyperdynamic_therapy.csv --events events --n n --cumulative n {STEPS}"),
    (0, "rate warfarin_stroke.csv --events control_events --time control_time"),
    (0, "correlation conscientiousness.csv --r r --n n"),
    (0, "mean stroke_length_of_stay.csv --n control_n --mean control_mean --sd control_sd"),
    (0, "effects passive_smoking_ratios.csv --study study --effect-size or --ci-lower or_lower --ci-upper or_upper "
        f"--ratio --preset cochrane {STEPS}"),
    (0, f"effects GAPS --study who {EFFECTS}--subgroup group --cumulative year --bubble year"),
    (0, f"effects GAPS --study who {EFFECTS}--subgroup group --keep-missing-groups --outcome binary --model fixed "
        "--contrast one"),
    (0, f"effects NONE {EFFECTS}"),
    (0, f"regression bcg_vaccine.csv --study study {TABLE}--factor allocation --covariate year "
        "--interaction allocation:year --influence --permutations 20 --seed 1 --hypothesis 0,1,0,0,0,0,0,0 "
        "--predict allocation=1,year=1950"),
    (0, f"regression passive_smoking.csv {EFFECTS}--covariate year --cluster country --predict year=1990"),
    (0, f"regression GAPS --study who {EFFECTS}--covariate year --factor group --model fixed --dispersion"),
    (1, f"regression ONE {EFFECTS}--covariate x"),
]


def run(program, arguments, status):
    result = subprocess.run([program, *arguments, "--json", "-"], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            check=False)
    if result.returncode != status:
        sys.exit(f"{' '.join(arguments)}: status {result.returncode}: {result.stderr.decode()}")
    refuse = lambda token: sys.exit(f"{token} is no JSON")
    return json.loads(result.stdout.decode("utf-8", "strict"), parse_constant=refuse)


def check_lists(output):
    """The relations that docs/json.md promises."""
    records, results = output["records"], output["results"]
    assert len(output["studies"]) == records["used"] == len(records["numbers"])
    assert len(output["messages"]) == len(output["warnings"])
    excluded = [one["record"] for one in records["excluded"]]
    assert sum(records["excludedByReason"].values()) == len(excluded)
    assert not set(excluded) & set(records["numbers"])
    if output["status"]["kind"] != "error":
        assert sorted(excluded + records["numbers"]) == list(range(records["read"])), records
        assert len(excluded) == records["missing"] + records["invalid"] + records["dropped"], records
    if "EffectSize" in results:
        assert len(results["EffectSize"]) == records["used"] and results["NonMissingStudyID"] == records["numbers"]
        outside = set(results["SubgroupMissing"]) | set(results["CumulativeMissing"])
        grouped = [record for members in results["SubGroupStudyID"] for record in members]
        assert not outside & set(grouped) or len(results["UniGroup"]) == 1
        assert outside <= set(records["numbers"])


def members_of(node, path=()):
    """The path and key of each member whose name the schema knows."""
    for key, value in node.items():
        yield path, key
        if isinstance(value, dict) and key not in ("settings", "excludedByReason"):
            yield from members_of(value, (*path, key))
        if isinstance(value, list) and value and isinstance(value[0], dict):
            yield from members_of(value[0], (*path, key, 0))


def changed(output, path, key, change):
    copied = copy.copy(output)
    node = copied
    for step in path:
        node[step] = copy.copy(node[step])
        node = node[step]
    change(node, key)
    return copied


def shortened(node):
    """The same types with an entry for each list of results, which is quicker to validate."""
    if isinstance(node, dict):
        return {key: shortened(value) for key, value in node.items()}
    return [shortened(value) for value in node[:1]] if isinstance(node, list) else node


def check_refusals(validator, output):
    """A key that is gone, of another type, or unknown makes the output invalid."""
    output = {**output, "results": shortened(output["results"])}
    if "Score" in output["results"]:
        output["results"]["Score"] = []
    assert validator.is_valid(output)
    members = list(members_of(output))
    changes = [(path, key, lambda node, key: node.pop(key)) for path, key in members]
    changes += [(path, key, lambda node, key: node.update({key: {"x": object}})) for path, key in members]
    changes += [(path, "New", lambda node, key: node.update({key: 1})) for path in {path for path, _ in members}]
    for path, key, change in changes:
        if validator.is_valid(changed(output, path, key, change)):
            sys.exit(f"The schema takes a change of {path} {key}.")


def check_descriptions(node, path=""):
    for key, value in node.get("properties", {}).items():
        if "description" not in value and value.get("$ref", "").split("/")[-1] not in ("settings", "records", "status"):
            sys.exit(f"{path}{key} has no description.")
        check_descriptions(value, f"{path}{key}.")
    for name, definition in node.get("$defs", {}).items():
        check_descriptions(definition, f"{name}.")


def main():
    program, schema_path, data = sys.argv[1:]
    schema = json.loads(Path(schema_path).read_text(encoding="utf-8"))
    Draft202012Validator.check_schema(schema)
    check_descriptions(schema)
    validator = Draft202012Validator(schema)
    kinds = {}
    with tempfile.TemporaryDirectory() as folder:
        made = {"GAPS": GAPS, "NONE": b"effect,variance\nNA,1\n", "ONE": b"effect,variance,x\n1,1,2\n2,1,NA\n"}
        for name, content in made.items():
            Path(folder, name).write_bytes(content)
        for status, line in CASES:
            command, name, *options = line.split()
            output = run(program, [command, str(Path(folder if name in made else data, name)), *options], status)
            for error in validator.iter_errors(output):
                sys.exit(f"{line}: {'.'.join(map(str, error.absolute_path))}: {error.message[:300]}")
            check_lists(output)
            kinds[frozenset(output["results"])] = output
    for output in kinds.values():
        check_refusals(validator, output)
    print(f"{len(CASES)} outputs are valid; {len(kinds)} kinds of results refuse every change.")


main()
