#!/usr/bin/env bash
# Runs the calls of the table in docs/coming-from-r-or-revman.md, by the program and, where R has metafor, by R:
# both print the figure of the table to its last digit.
#   tests/host/metafor_check.sh DOCUMENT PROGRAM
# Paths are those of the project's folder, the current one.
set -euo pipefail

if (($# != 2)); then
    echo "usage: $0 DOCUMENT PROGRAM" >&2
    exit 2
fi
document=$1 program=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Lines "CALL TAB COMMAND TAB KEY TAB FIGURE"; the words for commands, with what they stand for; R's preparation.
sed -nE 's/^\| `(.*)` \| `(.*)` \| `(.*)` \| (-?[0-9.]+) \|$/\1\t\2\t\3\t\4/p' "$document" >"$folder/rows"
declare -A stands_for
while IFS=$'\t' read -r word command; do
    stands_for[$word]=$command
done < <(sed -nE 's/^\| `([A-Z-]+)` \| `(.*)` \|$/\1\t\2/p' "$document")
sed -n '/^```r$/,/^```$/p' "$document" | grep -v '^```' >"$folder/calls.R"

# is_figure FIGURE PRINTED: the printed number is the figure when rounded as that is, give or take one in the last
# digit, for what R leaves of its iterations.
is_figure() {
    awk -v figure="$1" -v printed="$2" 'BEGIN {
        decimals = length(figure) - index(figure, ".")
        difference = printed - figure
        exit !(difference < 1.5 * 10 ^ -decimals && -difference < 1.5 * 10 ^ -decimals) }'
}

failures=0 rows=0
# expect FIGURE PRINTED WHO
expect() {
    if ! is_figure "$1" "$2"; then
        printf '%s\nhas %s, not %s\n' "$3" "$2" "$1" >&2
        failures=$((failures + 1))
    fi
}

while IFS=$'\t' read -r call command key figure; do
    rows=$((rows + 1))
    read -ra words <<<"$command"
    read -ra first <<<"${stands_for[${words[0]}]:-${words[0]}}"
    expect "$figure" "$("$program" "${first[@]}" "${words[@]:1}" --json - | jq ".results.$key")" "$command"
    printf 'cat(as.numeric(%s)[1], "\\n")\n' "$call" >>"$folder/calls.R"
done <"$folder/rows"

by_r=no
if Rscript -e 'library(metafor)' >/dev/null 2>&1; then
    by_r=yes
    sed -i '1i options(digits = 15, warn = -1)' "$folder/calls.R"
    Rscript "$folder/calls.R" 2>/dev/null | grep -E '^-?[0-9.e-]+ *$' >"$folder/printed"
    [[ $(wc -l <"$folder/printed") == "$rows" ]]
    while IFS=$'\t' read -r call _ _ figure printed; do
        expect "$figure" "$printed" "$call"
    done < <(paste "$folder/rows" "$folder/printed")
fi

echo "$rows figures by the program, by R: $by_r"
((rows > 0 && failures == 0))
