#!/usr/bin/env bash
# Runs the commands of docs/scaling.md that use GNU parallel, and compares what they join with one process.
#   tests/scaling/parallel_check.sh FOLDER       as prepare.sh writes it; the program is in PATH
set -euo pipefail
document=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../docs/scaling.md")
cd "$1"

bash -euo pipefail <(sed -n '/^## GNU parallel/,/^## Dask/{/^```sh/,/^```$/{/^```/!p}}' "$document")
for joined in by_blocks by_stream by_files by_studies; do
    cmp one_process.tsv "$joined.tsv"
done

# Blocks of any size keep a key together, also one whose rows are more than a block.
pool() { meta-analysis batch "$1" --key SNP --effect-size BETA --std-error SE --columns k,estimate --threads 1; }
export -f pool
{
    head -n 2000 grouped.tsv
    for ((i = 0; i < 3000; ++i)); do printf 'rs9\tstudy%d\t0.%04d\t0.02\n' "$i" "$i"; done
    tail -n 2000 grouped.tsv
} >uneven.tsv
pool uneven.tsv >one_process_uneven.tsv
for block in 2k 7001 30k; do
    parallel --pipepart -a uneven.tsv --header : --colsep '\t' --group-by 1 --block $block -k pool - |
        awk 'NR == 1 { header = $0; print } $0 != header' | cmp one_process_uneven.tsv
done
