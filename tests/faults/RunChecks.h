#pragma once

#include "faults/GeneratedCase.h"
#include "faults/Violations.h"

/// Runs an analysis with the small-study tests and bubble plots after it, and checks what holds for any.
void CheckAnalysis(const AnalysisCase& made, Violations& violations);

/// What holds for the results of any analysis, whatever the status.
void CheckShapesAndRanges(const Expectations& expect);

/// Builds a meta-regression and checks what holds for any.
void CheckRegression(const RegressionCase& made, Violations& violations);
