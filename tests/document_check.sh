#!/usr/bin/env bash
# Compares a document with the program that it explains.
#   tests/document_check.sh DOCUMENT SOURCE PROGRAM
# Every ```cpp or ```c block must stand in the source, and every ```text block in what the program prints. Leading
# blanks do not count: a document shows the body of a function without its indentation.
set -euo pipefail

if (($# != 3)); then
    echo "usage: $0 DOCUMENT SOURCE PROGRAM" >&2
    exit 2
fi

flush_left() {
    sed 's/^[[:blank:]]*//'
}

source=$(flush_left <"$2")
output=$("$3" | flush_left)

checked=0
# require BLOCK TEXT PLACE: the block is part of the text.
require() {
    checked=$((checked + 1))
    if [[ $2 != *"$1"* ]]; then
        printf '%s: this block is not in %s:\n%s\n' "$document" "$3" "$1" >&2
        exit 1
    fi
}

document=$1
kind='' block=''
while IFS= read -r line; do
    case $kind:$line in
    :'```'?*) kind=${line#\`\`\`} block='' ;;
    :'```') kind=other ;;
    cpp:'```' | c:'```') require "${block%$'\n'}" "$source" "$2" && kind='' ;;
    text:'```') require "${block%$'\n'}" "$output" "the output of $3" && kind='' ;;
    *:'```') kind='' ;;
    *) block+=$line$'\n' ;;
    esac
done < <(flush_left <"$document")

echo "$document: $checked blocks agree with the program"
((checked > 0))
