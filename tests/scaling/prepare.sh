#!/usr/bin/env bash
# Writes the data that docs/scaling.md speaks of into a folder, and what one process makes of each file.
#   tests/scaling/prepare.sh FOLDER       with the program in PATH
set -euo pipefail
source_folder=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
rm -rf "$1"
mkdir -p "$1"
cd "$1"

/usr/bin/python3 "$source_folder/bench/bulk/markers.py" . --rows 100000
last_key=$(tail -n 1 grouped.tsv | cut -f 1)

# by_chromosome FOLDER FILE: parts of a file by the numbers of its keys.
by_chromosome() {
    mkdir -p "$1"
    awk -F'\t' -v folder="$1" -v last="${last_key#rs}" '
        NR == 1 { for (i = 1; i <= 22; ++i) print >(folder "/chr" i ".tsv"); next }
        { print >(folder "/chr" 1 + int(substr($1, 3) * 22 / (last + 1)) ".tsv") }' "$2"
}
by_chromosome chromosomes grouped.tsv
for study in split/*.tsv; do
    by_chromosome "studies/$(basename "$study" .tsv)" "$study"
done

# What the examples ask for, by one process.
mkdir expected
for file in chromosomes/*.tsv; do
    meta-analysis batch "$file" --key SNP --effect-size BETA --std-error SE --tau2 reml --knapp-hartung adjusted \
        --output "expected/${file##*/}"
done
