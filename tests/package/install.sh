#!/usr/bin/env bash
# Installs a build into a folder and moves it: whatever the tests do with PREFIX, they do with a moved tree.
#   tests/package/install.sh BUILD PREFIX
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

build=$1 prefix=$2

rm -rf "$prefix" "$prefix.first"
quietly "Installing" cmake --install "$build" --prefix "$prefix.first"
mv "$prefix.first" "$prefix"
