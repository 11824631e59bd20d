#include "faults/Checks.h"

#include "faults/GeneratedCase.h"
#include "faults/RunChecks.h"

#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"

#include <exception>

using namespace MA_NAMESPACE;

namespace {

void CheckRegressionOf(ByteStream& bytes, Violations& violations)
{
    const RegressionCase made(bytes);
    if (made.isRandom)
        CheckRegression<MAREAlgorithm>(made, violations);
    else
        CheckRegression<MAFEAlgorithm>(made, violations);
}

void CheckAnalysisOf(ByteStream& bytes, Violations& violations)
{
    const AnalysisCase made(bytes);
    if (made.isBinary)
        CheckAnalysis<MABinModel>(made, violations);
    else
        CheckAnalysis<MAContModel>(made, violations);
}

} // namespace

std::vector<std::string> ViolationsOf(const Bytes& bytes)
{
    Violations violations;
    ByteStream stream(bytes);
    try {
        if (stream.OneIn(3))
            CheckRegressionOf(stream, violations);
        else
            CheckAnalysisOf(stream, violations);
    } catch (const std::exception& exception) {
        violations.Add(std::string("no exception escapes: ") + exception.what());
    }
    return violations.Texts();
}
