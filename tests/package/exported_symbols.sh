#!/usr/bin/env bash
# Compares what the shared library exports with the list in exported_symbols.txt, the record of its binary
# interface: what the list loses, breaks hosts that were linked before.
#   tests/package/exported_symbols.sh LIBRARY             fails and shows the differences, if there are any
#   tests/package/exported_symbols.sh LIBRARY --update    writes the list anew
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

library=$1
list=tests/package/exported_symbols.txt

# Once each, though a constructor or destructor has several symbols of one name.
exported() {
    nm -D --defined-only --extern-only --demangle --format=just-symbols "$library" | LC_ALL=C sort -u
}

if [[ ${2-} == --update ]]; then
    exported >"$list"
elif ! diff --unified=0 "$list" <(exported); then
    echo "If the change is meant: ${BASH_SOURCE[0]} $library --update"
    exit 1
fi
