#!/usr/bin/env bash
# Compares the man page with the program's help, both ways: options, arguments, choices and defaults; and has
# mandoc look at its form.
#   tests/host/man_page_check.sh PROGRAM PAGE
set -euo pipefail

if (($# != 2)); then
    echo "usage: $0 PROGRAM PAGE" >&2
    exit 2
fi
program=$1
page=$2

# Both sides come down to lines "option ARGUMENT" and "option: choice or (default ...)", each once.
words_of_help() {
    for command in '' binary continuous rates proportion rate correlation mean effects regression batch; do
        "$program" ${command:+"$command"} --help
    done | awk '
        function tell(   rest, list, n, i, words) {
            for (rest = text; match(rest, /\(default[^)]*\)/); rest = substr(rest, RSTART + RLENGTH))
                print option ": " substr(rest, RSTART, RLENGTH)
            if (match(text, /: [a-z0-9-]+(, [a-z0-9-]+)+( \(default|$)/)) {
                list = substr(text, RSTART + 2, RLENGTH - 2)
                sub(/ \(default$/, "", list)
                n = split(list, words, ", ")
                for (i = 1; i <= n; ++i)
                    print option ": " words[i]
            }
            text = ""
        }
        /^  (-[a-z],)?--/ {
            tell()
            option = $1
            sub(/^-[a-z],/, "", option)
            print option ($2 ~ /^[A-Z]+(:[A-Z]+)?$/ && NF > 1 ? " " $2 : "")
        }
        /^  (-[a-z],)?--|^                    / { text = text " " $0; if ($0 ~ /outcome:/) tell() }
        !/^  (-[a-z],)?--|^                    / { tell() }
        END { tell() }' | sort -u
}

words_of_page() {
    awk '
        /^\.It .*Fl Fl/ {
            option = $0
            sub(/^.*Fl Fl /, "--", option)
            argument = option ~ / Ar / ? toupper(option) : ""
            sub(/^.* AR /, " ", argument)
            sub(/ .*$/, "", option)
            print option argument
            next
        }
        /^\.(It|Sh|Ss)/ { option = "" }
        option == "" { next }
        /^\.Cm .* , / { gsub(/^\.Cm | ,/, ""); for (i = 1; i <= NF; ++i) print option ": " $i }
        match($0, /\(default[^)]*\)/) { print option ": " substr($0, RSTART, RLENGTH) }' "$page" | sort -u
}

diff -u --label "the help of $program" --label "$page" <(words_of_help) <(words_of_page)
mandoc -T lint -W warning "$page"
