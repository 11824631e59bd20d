#!/usr/bin/env bash
# Builds the R package with its vignette against the installed library, and checks it: what R CMD check looks at,
# the examples and the tests, in a locale with a decimal comma too where localedef can make one.
#   tests/package/r_package.sh PREFIX FOLDER VERSION
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

prefix=$1 folder=$2 version=$3 source=$PWD/r
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name meta_analysis.pc)")
# What the package suggests, metafor and the two that make the vignette, is used where it is there. R knows no
# name for a licence that is not chosen yet.
export PKG_CONFIG_PATH _R_CHECK_FORCE_SUGGESTS_=false _R_CHECK_LICENSE_=false
unset META_ANALYSIS_CFLAGS META_ANALYSIS_LIBS

rm -rf "$folder"
mkdir -p "$folder/locales"
cd "$folder"
if localedef -i de_DE -f UTF-8 locales/de_DE.UTF-8 2>/dev/null; then
    export LOCPATH=$folder/locales
fi

has_packages() {
    Rscript -e 'quit(status = !all(sapply(commandArgs(TRUE), requireNamespace, quietly = TRUE)))' "$@"
}

vignettes=()
has_packages knitr markdown metafor || vignettes=(--no-build-vignettes)
quietly "Building the package" R CMD build "${vignettes[@]}" "$source"
quietly "Checking it" R CMD check --no-manual --no-vignettes "metaanalysis_$version.tar.gz"
log=metaanalysis.Rcheck/00check.log
if ! grep -qx 'Status: OK' "$log"; then
    cat "$log" >&2
    exit 1
fi
