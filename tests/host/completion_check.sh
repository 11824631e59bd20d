#!/usr/bin/env bash
# Completes command lines in bash, and in zsh when it is installed, with the scripts that the program writes.
#   tests/host/completion_check.sh PROGRAM DATA
# DATA has the columns study, treatment_events and latitude.
set -euo pipefail

if (($# != 2)); then
    echo "usage: $0 PROGRAM DATA" >&2
    exit 2
fi
program=$1 data=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$program" --completion bash >"$folder/bash"
"$program" --completion zsh >"$folder/_meta-analysis"
gzip -c "$data" >"$folder/data.csv.gz"

# The words of a command line, of which the last one is completed, then the completions.
cases=(
    "meta-analysis reg|regression"
    "meta-analysis help prop|proportion"
    "meta-analysis binary $data --trim-fill-k|--trim-fill-knapp-hartung"
    "meta-analysis binary $data --tau2 re|reml"
    "meta-analysis binary $data --effect risk-d|risk-difference"
    "meta-analysis binary $data --treatment-events treatment_e|treatment_events"
    "meta-analysis binary $folder/data.csv.gz --subgroup lat|latitude"
    "meta-analysis binary $folder/dat|$folder/data.csv.gz"
)

in_bash() {
    bash --norc -c '
        compopt() { :; }
        source "$1"
        COMP_WORDS=(${@:2}) COMP_CWORD=$(($# - 2))
        _meta_analysis
        printf "%s\n" "${COMPREPLY[@]}"' - "$folder/bash" "$@"
}

# A shell at a terminal of its own, to which the line and a tabulator are typed.
in_zsh() {
    zsh -f -c '
        zmodload zsh/zpty
        zpty shell zsh -f -i
        zpty -w shell "PROMPT= RPROMPT=; unsetopt zle_bracketed_paste beep; fpath=($1 \$fpath); autoload -Uz compinit; compinit -u -d $1/dump"
        zpty -w shell "bindkey \"^I\" complete-word; show() { print -r -- \"<\$BUFFER>\"; BUFFER=; zle accept-line }; zle -N show; bindkey \"^X\" show; print READY"
        zpty -r -m shell line "*
READY*"
        zpty -w -n shell "$2"$'"'\t\x18'"'
        zpty -r -m shell line "*<*>*"
        line=${line##*<} line=${line%%>*}
        print -r -- ${${(z)line}[-1]}' - "$folder" "$*"
}

shells=(bash)
if command -v zsh >/dev/null; then
    shells+=(zsh)
fi
for shell in "${shells[@]}"; do
    for one in "${cases[@]}"; do
        read -ra words <<<"${one%|*}"
        completed=$("in_$shell" "${words[@]}")
        if [[ $completed != "${one##*|}" ]]; then
            printf '%s: "%s" is completed to "%s", not to "%s"\n' "$shell" "${one%|*}" "$completed" "${one##*|}" >&2
            exit 1
        fi
    done
    echo "$shell: ${#cases[@]} command lines are completed"
done
