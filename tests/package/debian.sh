#!/usr/bin/env bash
# Makes the Debian packages of a build, in BUILD/packages, and unpacks them into an empty root. There the
# program is run, the loader being told the folder that an installation would have registered with it, and a
# host is built.
#   tests/package/debian.sh BUILD
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

packages=$1/packages
rm -rf "$packages"
quietly "Packing" cpack -G DEB --config "$1/CPackConfig.cmake" -B "$packages"

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
for package in "$packages"/*.deb; do
    dpkg-deb --field "$package" Package Depends Recommends
    dpkg-deb --extract "$package" "$root"
done

# The libraries that the program links are what its package depends on; gnuplot is not among them.
depends=$(dpkg-deb --field "$packages"/meta-analysis_*.deb Depends)
[[ $depends == *libmeta-analysis*libc6*libfmt* && $depends != *gnuplot* ]]

program=$root/usr/bin/meta-analysis
libraries=$(dirname "$(find "$root" -name libmeta_analysis.so)")
loader=$(readelf --string-dump=.interp "$program" | grep -o '/.*')
"$loader" --library-path "$libraries" "$program" "${bcg_vaccine[@]}" | grep -F '0.4746 [0.3296, 0.6835]'

if [[ -e $root/usr/lib/python3 ]]; then
    LD_LIBRARY_PATH=$libraries tests/package/python.sh "$root/usr"
fi

tests/package/consumer.sh pkg-config "$root" "$root/consumer"
