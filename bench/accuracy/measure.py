#!/usr/bin/env python3
"""Measures the errors of the estimators: what the program prints for tests/data against 50-digit arithmetic.

usage: measure.py PROGRAM

Prints a table of the largest error of each quantity over all analyses, and where it occurred. Errors are
relative; of effects, estimates, coefficients and bounds they are relative to the standard error, for these
are differences; of significances, I² and R² they are absolute.
"""

import conversion
import groups
import harness
import influence
import outcomes
import pooling
import regression

conversion.measure()
pooling.measure()
groups.measure()
outcomes.measure()
regression.measure()
influence.measure()
harness.print_table()
