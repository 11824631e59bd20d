#!/usr/bin/env bash
# Compares functions and structs of the C interface with c_interface.abi, the record of what hosts were compiled
# with. New functions, and new fields at the end of structs that have their size in the first field, break none.
#   tests/package/c_interface_abi.sh LIBRARY             fails and shows what a host would trip over
#   tests/package/c_interface_abi.sh LIBRARY --update    writes the record anew
# LIBRARY has debugging information; without any it is not tested (status 77).
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

library=$1
record=tests/package/c_interface.abi
ignored=tests/package/c_interface.abignore

if ! readelf --section-headers "$library" | grep -q '\.debug_info'; then
    echo "$library has no debugging information: not tested"
    exit 77
fi

# Without what depends on the place or on the version; the sources other than those of the C interface have
# nothing to say here.
describe() {
    abidw --suppressions "$ignored" --header-file meta_analysis/bulk/meta_analysis.h --drop-private-types \
        --drop-undefined-syms --exported-interfaces-only --type-id-style hash --no-architecture \
        --no-corpus-path --no-comp-dir-path --no-elf-needed --no-show-locs "$library" |
        awk '/<abi-instr/ { drop = !/CInterface/ } !drop { print } /<\/abi-instr>/ { drop = 0 }' |
        sed -e "s/ soname='[^']*'//" -e "s| path='[^']*/| path='|"
}

now=$(mktemp --suffix=.abi)
trap 'rm -f "$now"' EXIT
describe >"$now"
grep -q "name='ma_pool_block'" "$now"

if [[ ${2-} == --update ]]; then
    cp "$now" "$record"
elif ! abidiff --suppressions "$ignored" --no-added-syms "$record" "$now"; then
    echo "Hosts that are compiled already would not work. If that is meant: $0 $library --update"
    exit 1
fi
