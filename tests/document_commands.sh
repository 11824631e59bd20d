#!/usr/bin/env bash
# Runs the commands of the program that a document shows, and compares what they print.
#   tests/document_commands.sh DOCUMENT PROGRAM
# A block of the document is a command, `$ build/bin/meta-analysis ...` with its continued lines, and output,
# which must stand in what the command prints; a line `...` is for what is left out. Paths are those of the
# project's folder, the current one.
set -euo pipefail

if (($# != 2)); then
    echo "usage: $0 DOCUMENT PROGRAM" >&2
    exit 2
fi

checked=0
# compare COMMAND OUTPUT
compare() {
    checked=$((checked + 1))
    local printed part rest=$2$'...\n'
    printed=$(bash -c "${1//build\/bin\/meta-analysis/"$program"}")$'\n'
    while [[ -n $rest ]]; do
        part=${rest%%...$'\n'*} rest=${rest#*...$'\n'}
        if [[ $printed != *"$part"* ]]; then
            printf '%s: the command\n%s\ndoes not print\n%s' "$document" "$1" "$part" >&2
            exit 1
        fi
    done
}

document=$1 program=$2
state=text command='' output=''
while IFS= read -r line; do
    case $state:$line in
    text:'```') state=block ;;
    block:'$ build/bin/meta-analysis '*) state=command command=${line#'$ '} output='' ;;
    command:'```' | output:'```') compare "$command" "$output" && state=text ;;
    *:'```'*) state=$([[ $state == text ]] && echo other || echo text) ;;
    command:*) [[ $command == *\\ ]] && command+=$'\n'$line || { state=output output=$line$'\n'; } ;;
    output:*) output+=$line$'\n' ;;
    block:*) state=other ;;
    esac
done <"$document"

echo "$document: $checked commands print what it shows"
((checked > 0))
