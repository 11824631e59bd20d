#include "faults/Checks.h"

#include "faults/RunChecks.h"

#include <exception>

std::vector<std::string> ViolationsOf(const Bytes& bytes)
{
    Violations violations;
    ByteStream stream(bytes);
    try {
        if (stream.OneIn(3))
            CheckRegression(RegressionCase(stream), violations);
        else
            CheckAnalysis(AnalysisCase(stream), violations);
    } catch (const std::exception& exception) {
        violations.Add(std::string("no exception escapes: ") + exception.what());
    }
    return violations.Texts();
}
