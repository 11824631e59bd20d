#include "meta_analysis/analysis/MAAnalysisResults.h"

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

std::vector<std::vector<double>> MAAnalysisResults::CumulativeRows(double MAModelRow::*field) const
{
    try {
        std::vector<std::vector<double>> rows;
        rows.reserve(cumulativeRows_.size());
        for (const std::vector<MAModelRow>& row : cumulativeRows_)
            rows.push_back(FieldOf(row, field));
        return rows;
    } catch (...) {
        return {};
    }
}

} // namespace MA_NAMESPACE
