#!/usr/bin/env bash
# Pools by the installed module of Python, which has to find the library by itself.
#   tests/package/python.sh PREFIX
set -euo pipefail

cd /
# The estimate of two studies with one variance is their mean, up to rounding.
PYTHONPATH=$1/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1 /usr/bin/python3 -c '
import sys, meta_analysis
assert meta_analysis.__file__.startswith(sys.argv[1]), meta_analysis.__file__
assert abs(meta_analysis.pool([1.0, 2.0], [0.5, 0.5]).estimate - 1.5) < 1e-15
' "$1"
