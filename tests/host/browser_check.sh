#!/usr/bin/env bash
# Opens a page in headless Chromium, as wide as a desk and as narrow as a phone, and prints it.
#   tests/host/browser_check.sh PAGE.html FOLDER
# Writes wide.png, narrow.png and page.pdf into the folder. Fails when the browser does, or when the page
# makes it write to its console.
set -euo pipefail

if (($# != 2)); then
    echo "usage: $0 PAGE.html FOLDER" >&2
    exit 2
fi
mkdir -p "$2"
page=$(realpath "$1")
folder=$(realpath "$2")
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT

browse() {
    local result=$1
    shift
    rm -f "$result"
    timeout 120 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
        --disable-background-networking --disable-component-update --disable-sync --user-data-dir="$profile" \
        --hide-scrollbars --enable-logging=stderr --v=0 "$@" "file://$page" 2>"$profile/log" || {
        cat "$profile/log" >&2
        exit 1
    }
    # The log does not tell errors from other messages; a page without scripts has no reason for either.
    if grep 'CONSOLE' "$profile/log" >&2; then
        exit 1
    fi
    if [[ ! -s $result ]]; then
        echo "the browser wrote no $result" >&2
        exit 1
    fi
}

browse "$folder/wide.png" --screenshot="$folder/wide.png" --window-size=1280,2400
browse "$folder/narrow.png" --screenshot="$folder/narrow.png" --window-size=390,2400
browse "$folder/page.pdf" --print-to-pdf="$folder/page.pdf" --no-pdf-header-footer
