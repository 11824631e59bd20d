#!/usr/bin/env bash
# Compares the figures of 3,000 markers with those that plink and GWAMA print. Speed is for scripts/bench-bulk.
#   tests/scaling/peers_check.sh FOLDER       with the program in PATH
set -euo pipefail
bulk=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../bench/bulk")
rm -rf "$1"
/usr/bin/python3 "$bulk/markers.py" "$1" --markers 3000
/usr/bin/python3 "$bulk/compare.py" "$(command -v meta-analysis)" "$1" --rounds 1
