#pragma once

#include "faults/Expectations.h"
#include "faults/GeneratedCase.h"

/// Runs an analysis with the small-study tests and bubble plots after it, and expects what holds for any.
void CheckAnalysis(const AnalysisCase& made);
/// What holds for the results of any analysis, whatever the status.
void CheckShapesAndRanges(const Expectations& expect);
/// Builds a meta-regression and expects what holds for any.
void CheckRegression(const RegressionCase& made);

/// Makes an analysis or a meta-regression from the bytes, and checks it.
inline void CheckCase(const Bytes& bytes)
{
    ByteStream stream(bytes);
    if (stream.OneIn(3))
        CheckRegression(RegressionCase(stream));
    else
        CheckAnalysis(AnalysisCase(stream));
}
