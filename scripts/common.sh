# shellcheck shell=bash
# Sourced by the scripts beside it: strict mode, the project's root as working directory, quiet steps.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# quietly TITLE COMMAND...: shows the title alone while the command succeeds, and all it said when it fails.
quietly() {
    local title=$1 log status=0
    shift
    log=$(mktemp)
    echo "== $title"
    "$@" >"$log" 2>&1 || status=$?
    if ((status != 0)); then
        cat "$log"
        echo "failed ($status): $*" >&2
    fi
    rm -f "$log"
    return "$status"
}
