#!/usr/bin/env bash
# Checks a page in headless Chromium, see browser_check.mjs, and its print.
#   tests/host/browser_check.sh PAGE.html FOLDER
# Writes wide.png, narrow.png and page.pdf into the folder. Fails when a check does, or when a printed page is
# empty or ends with a heading. scripts/setup installs the packages of npm into build/npm.
set -euo pipefail

if (($# != 2)); then
    echo "usage: $0 PAGE.html FOLDER" >&2
    exit 2
fi
here=$(realpath "$(dirname "$0")")
mkdir -p "$2"
timeout 300 node "$here/browser_check.mjs" "$here/../../build/npm" "$1" "$2"

headings=$(grep -oP '(?<=<h2>)[^<]*' "$1")
pages=$(pdfinfo "$2/page.pdf" | awk '/^Pages:/ {print $2}')
for ((page = 1; page <= pages; page++)); do
    last=$(pdftotext -layout -f "$page" -l "$page" "$2/page.pdf" - | tr -d '\f' | sed 's/^ *//' | grep -v '^$' | tail -1 || true)
    if [[ -z $last ]] || grep -qxF -- "$last" <<<"$headings"; then
        echo "printed page $page of $pages is empty or ends with a heading: '$last'" >&2
        exit 1
    fi
done
