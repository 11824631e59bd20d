#!/usr/bin/env bash
# Runs the tests of the C interface in a locale with a decimal comma, which it makes for itself.
#   tests/decimal_comma.sh TEST-PROGRAM
# Without the sources of locales it is not tested (status 77).
set -euo pipefail

if (($# != 1)); then
    echo "usage: $0 TEST-PROGRAM" >&2
    exit 2
fi
if [[ ! -e /usr/share/i18n/locales/de_DE ]]; then
    echo "The package locales is not installed: not tested"
    exit 77
fi

LOCPATH=$(mktemp -d)
export LOCPATH
trap 'rm -rf "$LOCPATH"' EXIT
localedef -i de_DE -f UTF-8 "$LOCPATH/de_DE.UTF-8"
[[ $(LC_ALL=de_DE.UTF-8 locale decimal_point) == , ]]
"$1" --gtest_filter='CInterface.*' | tee /dev/stderr | grep -F '[       OK ] CInterface.NumbersAreReadWithAPoint'
