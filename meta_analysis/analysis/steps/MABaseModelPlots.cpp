// Coordinates of the funnel and Galbraith plots.

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/settings/Guarded.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace MA_NAMESPACE {

namespace {

/// Vertical coordinate of a study in the funnel plot; 0 for a value outside the enumeration.
double FunnelY(MAConst::FunnelYType type, double variance)
{
    switch (type) {
    case MAConst::FUNNEL_STD_ERROR:
        return std::sqrt(variance);
    case MAConst::FUNNEL_PRECISION:
        return 1.0 / std::sqrt(variance);
    case MAConst::FUNNEL_VARIANCE:
        return variance;
    case MAConst::FUNNEL_INVERSE_VARIANCE:
        return 1.0 / variance;
    }
    return 0.0;
}

/// The standard error that belongs to a vertical coordinate.
double StdErrorAt(MAConst::FunnelYType type, double y)
{
    switch (type) {
    case MAConst::FUNNEL_STD_ERROR:
        return y;
    case MAConst::FUNNEL_PRECISION:
        return 1.0 / y;
    case MAConst::FUNNEL_VARIANCE:
        return std::sqrt(y);
    case MAConst::FUNNEL_INVERSE_VARIANCE:
        return 1.0 / std::sqrt(y);
    }
    return 0.0;
}

/// Of coordinates, which are no less than 0; 0 when there are none.
double Largest(const std::vector<double>& y)
{
    return std::accumulate(y.begin(), y.end(), 0.0, [](double a, double b) { return std::max(a, b); });
}

double Smallest(const std::vector<double>& y)
{
    return std::accumulate(y.begin(), y.end(), std::numeric_limits<double>::max(),
                           [](double a, double b) { return std::min(a, b); });
}

} // namespace

KXStatus MABaseModel::ComputePlotStatistics()
{
    return Guarded(status_, [this] {
        PlotAllStudies();
        const std::size_t groupCount = std::min(groups_.size(), static_cast<std::size_t>(groupCount_));
        for (std::size_t g = 0; HasGroups() && g < groupCount; ++g)
            PlotGroup(g);
        return status_;
    });
}

void MABaseModel::PlotAllStudies()
{
    const MAEffectColumns& effects = studies_.effects;
    CalcGalbPlotStatistics(effects.effectSize, effects.stdError);
    funnel_.x.push_back(effects.effectSize);
    CalcFunnelPlotY(effects.variance, false);
    const bool isFilled = settings_->GetIsTRIMFILL() && !filledResults_.models.empty();
    const std::vector<MAModelRow>& models = isFilled ? filledResults_.models : results_.models;
    CalcFunnelPlotCILine(models.empty() ? KXMV::Missing() : models.back().estimate);
    CalcFunnelPlotContours();
}

/// The Galbraith row of a group is scaled by the variances, not by the standard errors as that of all
/// studies.
void MABaseModel::PlotGroup(std::size_t group)
{
    const std::vector<double> effectSizes = Selected(studies_.effects.effectSize, groups_[group]);
    const std::vector<double> variances = Selected(studies_.effects.variance, groups_[group]);
    CalcGalbPlotStatistics(effectSizes, variances);
    funnel_.x.push_back(effectSizes);
    CalcFunnelPlotY(variances, false);
    CalcFunnelPlotCILine(GroupEstimate(group));
    CalcFunnelPlotContours();
}

double MABaseModel::GroupEstimate(std::size_t group) const
{
    if (HasCumulativeValues())
        return group < cumulativeRows_.size() && !cumulativeRows_[group].empty()
                   ? cumulativeRows_[group].back().estimate
                   : KXMV::Missing();
    return group < results_.models.size() ? results_.models[group].estimate : KXMV::Missing();
}

void MABaseModel::CalcGalbPlotStatistics(const std::vector<double>& effectSizes,
                                         const std::vector<double>& scale)
{
    std::vector<double> x;
    std::vector<double> y;
    x.reserve(effectSizes.size());
    y.reserve(effectSizes.size());
    double sumXY = 0.0;
    double sumXX = 0.0;
    for (std::size_t i = 0; i < effectSizes.size(); ++i) {
        x.push_back(1.0 / scale[i]);
        y.push_back(effectSizes[i] / scale[i]);
        sumXY += x[i] * y[i];
        sumXX += x[i] * x[i];
    }
    galbraith_.x.push_back(std::move(x));
    galbraith_.y.push_back(std::move(y));
    galbraith_.slope.push_back(sumXY / sumXX);
    galbraith_.criticalValue.push_back(TwoSidedNormalQuantile(alpha_));
}

void MABaseModel::CalcFunnelPlotY(const std::vector<double>& variances, bool withoutContour)
{
    const MAConst::FunnelYType type = settings_->GetFunnelYType();
    std::vector<double> y;
    y.reserve(variances.size());
    for (const double variance : variances)
        y.push_back(FunnelY(type, variance));
    if (!withoutContour)
        funnel_.yMax.push_back(Largest(y));
    funnel_.y.push_back(std::move(y));
}

/// The line on the upper side of the centre, for the row of vertical coordinates computed last: from the
/// origin (or, on an inverted axis, from the smallest coordinate) to the largest coordinate. A single point
/// divides by zero and becomes a NaN.
void MABaseModel::CalcFunnelPlotCILine(double centre)
{
    const MAConst::FunnelYType type = settings_->GetFunnelYType();
    const bool isInverted = type == MAConst::FUNNEL_PRECISION || type == MAConst::FUNNEL_INVERSE_VARIANCE;
    const double z = TwoSidedNormalQuantile(alpha_);
    const double start = isInverted ? Smallest(funnel_.y.back()) : 0.0;
    const int points = settings_->GetFunnelNPoints();
    const double step = (Largest(funnel_.y.back()) - start) / (points - 1.0);
    std::vector<double> x;
    std::vector<double> y;
    x.reserve(static_cast<std::size_t>(std::max(points, 0)));
    y.reserve(x.capacity());
    for (int k = 0; k < points; ++k) {
        const double t = k * step + start;
        const double stdError = StdErrorAt(type, t);
        if (!std::isinf(stdError)) {
            x.push_back(centre + z * stdError);
            y.push_back(t);
        }
    }
    funnel_.lineX.push_back(std::move(x));
    funnel_.lineY.push_back(std::move(y));
}

/// One row of contour extents at the largest vertical coordinate of the row computed last.
void MABaseModel::CalcFunnelPlotContours()
{
    if (settings_->GetFunnelConTourTesType() == MAConst::CONTOUR_NONE)
        return;
    std::vector<double> levels;
    settings_->GetSetFunnelConTourCutoff(levels);
    std::vector<double> extents;
    extents.reserve(levels.size());
    const double yMax = Largest(funnel_.y.back());
    for (const double level : levels)
        extents.push_back(CalcContourXPVal(yMax, level));
    funnel_.contourX.push_back(std::move(extents));
}

double MABaseModel::CalcContourXPVal(double yMax, double level) const
{
    switch (settings_->GetFunnelConTourTesType()) {
    case MAConst::CONTOUR_TWO_SIDED:
        return KXDistFun::IdfStdNorm(1.0 - level * 0.5) * yMax;
    case MAConst::CONTOUR_UPPER:
        return KXDistFun::IdfStdNorm(1.0 - level) * yMax;
    case MAConst::CONTOUR_LOWER:
        return KXDistFun::IdfStdNorm(level) * yMax;
    default:
        return 0.0 * yMax;
    }
}

} // namespace MA_NAMESPACE
