#!/usr/bin/env bash
# Checks that the links of the documents to files and headings of the project lead somewhere.
#   tests/document_links.sh PROJECT-FOLDER
set -euo pipefail

if (($# != 1)); then
    echo "usage: $0 PROJECT-FOLDER" >&2
    exit 2
fi
cd "$1"

links_of() {
    grep -oP '\]\(\K(?!https?:)[^)]+' "$1" || true
}

has_heading() {
    [[ $(sed -Ef docs/heading_anchors.sed "$1") == *"{#$2}"* ]]
}

# leads_somewhere FILE ANCHOR: the anchor may be empty.
leads_somewhere() {
    [[ -e $1 ]] && { [[ -z $2 ]] || has_heading "$1" "$2"; }
}

checked=0 broken=0
while IFS= read -r document; do
    while IFS= read -r link; do
        target=$document anchor=${link#*#}
        [[ $link == '#'* ]] || target=$(dirname "$document")/${link%%#*}
        [[ $link == *'#'* ]] || anchor=
        checked=$((checked + 1))
        leads_somewhere "$target" "$anchor" || {
            echo "$document: ($link) leads nowhere" >&2
            broken=$((broken + 1))
        }
    done < <(links_of "$document")
done < <(find . -name build -prune -o -name '*.md' -print)

echo "$checked links, $broken broken"
((checked > 0 && broken == 0))
