#include "meta_analysis/analysis/MAAnalysisResults.h"

#include "meta_analysis/inference/MATestPValues.h"

#include <numeric>

namespace MA_NAMESPACE {

MAAnalysisResults::MAAnalysisResults(const MAModelSettings& settings) : settings_(&settings) {}
MAAnalysisResults::MAAnalysisResults(const MAAnalysisResults&) = default;
MAAnalysisResults& MAAnalysisResults::operator=(const MAAnalysisResults&) = default;
MAAnalysisResults::~MAAnalysisResults() = default;

std::vector<double> MAAnalysisResults::GetNormalizedWeight() const
{
    std::vector<double> normalized = CopyOf(weights_);
    const double sum = std::accumulate(normalized.begin(), normalized.end(), 0.0);
    for (double& weight : normalized)
        weight /= sum;
    return normalized;
}

std::vector<double> MAAnalysisResults::GetLog10Sig() const
{
    return FieldOf(studies_.zValue, [](double z) { return TwoSidedNormalPValue(z).Log10(); });
}

} // namespace MA_NAMESPACE
