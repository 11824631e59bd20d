# shellcheck shell=bash
# Sourced by the scripts beside it: strict mode, the project's root as working directory, quiet steps.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The analysis that the scripts show: 13 trials of BCG vaccination (sources: tests/data/README.md).
# shellcheck disable=SC2034
bcg_vaccine=(binary tests/data/bcg_vaccine.csv --study study
    --treatment-events treatment_events --treatment-nonevents treatment_nonevents
    --control-events control_events --control-nonevents control_nonevents)

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
