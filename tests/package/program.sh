#!/usr/bin/env bash
# Runs the installed program, with the installed library and none else, and looks for its manual page.
#   tests/package/program.sh PREFIX VERSION
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

prefix=$1 version=$2
unset LD_LIBRARY_PATH

ldd "$prefix/bin/meta-analysis" | tee /dev/stderr | grep -F "libmeta_analysis.so" | grep -F "=> $prefix/"
"$prefix/bin/meta-analysis" --version | tee /dev/stderr | grep -F "$version"
[[ -s $prefix/share/man/man1/meta-analysis.1 ]]
[[ -s $prefix/share/meta-analysis/json-schema/meta-analysis-2.json ]]
grep -q 'complete -F' "$prefix/share/bash-completion/completions/meta-analysis"
[[ $(head -n 1 "$prefix"/share/zsh/*/_meta-analysis) == '#compdef meta-analysis' ]]
