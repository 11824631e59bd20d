// Getters of the plots' coordinates.

#include "meta_analysis/analysis/MAAnalysisResults.h"
#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

std::vector<std::vector<double>> MAAnalysisResults::GetFunnelX() const
{
    return CopyOf(Results().funnel.x);
}

std::vector<std::vector<double>> MAAnalysisResults::GetFunnelY() const
{
    return CopyOf(Results().funnel.y);
}

std::vector<std::vector<double>> MAAnalysisResults::GetFunnelCIX() const
{
    return CopyOf(Results().funnel.lineX);
}

std::vector<std::vector<double>> MAAnalysisResults::GetFunnelCIY() const
{
    return CopyOf(Results().funnel.lineY);
}

std::vector<std::vector<double>> MAAnalysisResults::GetFunnelContourX() const
{
    return CopyOf(Results().funnel.contours);
}

std::vector<double> MAAnalysisResults::GetFunnelContourY() const
{
    return CopyOf(Results().funnel.yMax);
}

std::vector<std::vector<double>> MAAnalysisResults::GetGalbPlotX() const
{
    return FieldOf(Results().galbraith, &MAGalbraithPlot::x);
}

std::vector<std::vector<double>> MAAnalysisResults::GetGalbPlotY() const
{
    return FieldOf(Results().galbraith, &MAGalbraithPlot::y);
}

std::vector<double> MAAnalysisResults::GetGalbRegrSlope() const
{
    return FieldOf(Results().galbraith, &MAGalbraithPlot::slope);
}

std::vector<double> MAAnalysisResults::GetGalbRegrIntercept() const
{
    return FieldOf(Results().galbraith, &MAGalbraithPlot::criticalValue);
}

std::vector<int> MAAnalysisResults::GetBubbleFlags() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::fitted);
}

std::vector<std::vector<int>> MAAnalysisResults::GetBubbleMissing() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::leftOut);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleCoefs() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::coefficients);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleXs() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::x);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubblePredVals() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::predicted);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleW() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::weight);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleCILower() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::ciLower);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleCIUpper() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::ciUpper);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleCICurveX() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::curveX);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleCICurveLower() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::curveLower);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubbleCICurveUpper() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::curveUpper);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubblePICurveLower() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::curvePILower);
}

std::vector<std::vector<double>> MAAnalysisResults::GetBubblePICurveUpper() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::curvePIUpper);
}

std::vector<double> MAAnalysisResults::GetBubbleSlopeStdError() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::slopeStdError);
}

std::vector<double> MAAnalysisResults::GetBubbleSlopeVal() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::slopeStatistic);
}

std::vector<double> MAAnalysisResults::GetBubbleSlopeSig() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::slopeSig);
}

std::vector<double> MAAnalysisResults::GetBubbleSlopeCILower() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::slopeCILower);
}

std::vector<double> MAAnalysisResults::GetBubbleSlopeCIUpper() const
{
    return FieldOf(Results().bubbles, &MABubbleRows::slopeCIUpper);
}

} // namespace MA_NAMESPACE
