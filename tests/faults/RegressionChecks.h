#pragma once

#include "faults/GeneratedCase.h"
#include "faults/Violations.h"

/// Builds a meta-regression and checks what holds for any. `Engine` is MAFEAlgorithm or MAREAlgorithm.
template <class Engine>
void CheckRegression(const RegressionCase& made, Violations& violations);
