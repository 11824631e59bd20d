#!/usr/bin/env bash
# Compares functions and structs of the C interface with c_interface.abi, the record of what hosts were compiled
# with. A new function breaks none. A new field is shown: at the end of a struct that has its size in the first
# field it breaks none either, and the record is to be updated; anywhere else it does.
#   tests/package/c_interface_abi.sh LIBRARY             fails and shows what a host would trip over
#   tests/package/c_interface_abi.sh LIBRARY --update    writes the record anew
# LIBRARY has debugging information; without any it is not tested (status 77).
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

library=$1
record=tests/package/c_interface.abi

if ! readelf --section-headers "$library" | grep '\.debug_info' >/dev/null; then
    echo "$library has no debugging information: not tested"
    exit 77
fi

# Without what depends on the place or on the version. Sources other than those of the C interface have nothing
# to say here.
describe() {
    abidw --suppressions tests/package/c_interface.abignore --headers-dir meta_analysis/bulk \
        --drop-private-types --drop-undefined-syms --exported-interfaces-only --type-id-style hash \
        --no-architecture --no-corpus-path --no-comp-dir-path --no-elf-needed --no-show-locs "$library" |
        awk '/<abi-instr/ { drop = !/CInterface/ } !drop { print } /<\/abi-instr>/ { drop = 0 }' |
        sed -e "s/ soname='[^']*'//" -e "s| path='[^']*/| path='|"
}

now=$(mktemp --suffix=.abi)
trap 'rm -f "$now"' EXIT
describe >"$now"
grep -q "name='ma_pool_block'" "$now"

if [[ ${2-} == --update ]]; then
    cp "$now" "$record"
elif ! abidiff --no-added-syms "$record" "$now"; then
    echo "If the change is meant, and breaks no host: ${BASH_SOURCE[0]} $library --update"
    exit 1
fi
