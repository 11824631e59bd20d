// Coordinates of plots, computed last in a run, and by a host.

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/steps/MABubblePlots.h"
#include "meta_analysis/analysis/steps/MAFunnelPlot.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <utility>

namespace MA_NAMESPACE {

/// The Galbraith row of a group is scaled by the variances, not by the standard errors as that of all
/// studies.
KXStatus MABaseModel::ComputePlotStatistics()
{
    return Guarded(status_, [this] {
        const MAAnalysisState& results = Results();
        const std::vector<MAPooledRow>& models = results.lists.rows;
        const MAEstimate overall = models.empty() ? MAEstimate() : models.back().effect;
        const bool isFilled = settings_->GetIsTRIMFILL() && results.trimFill.model.has_value();
        PlotStudies(results.studies.effectSize, results.studies.variance,
                    ValuesOf(results.studies.tests, &MAStudyTest::stdError),
                    isFilled ? results.trimFill.model->estimate : overall.estimate);
        const std::size_t groupCount = std::min(results.groups.members.size(), results.groups.values.size());
        for (std::size_t g = 0; results.groups.AreSeveral() && g < groupCount; ++g) {
            const MASelection& members = results.groups.members[g];
            const std::vector<double> variances = Selected(results.studies.variance, members);
            PlotStudies(Selected(results.studies.effectSize, members), variances, variances,
                        GroupEstimate(g));
        }
        return status_;
    });
}

void MABaseModel::PlotStudies(std::vector<double> effectSizes, const std::vector<double>& variances,
                              const std::vector<double>& scale, double centre)
{
    const MAFunnelChoice choice = FunnelChoiceOf(*settings_, Results().settings.alpha);
    State().galbraith.push_back(PlotGalbraith(effectSizes, scale, choice.alpha));
    MAFunnelPlot plot = PlotFunnel(std::move(effectSizes), variances, centre, choice);
    MAFunnelRows& funnel = State().funnel;
    funnel.x.push_back(std::move(plot.x));
    funnel.y.push_back(std::move(plot.y));
    funnel.yMax.push_back(plot.yMax);
    funnel.lineX.push_back(std::move(plot.lineX));
    funnel.lineY.push_back(std::move(plot.lineY));
    if (choice.contours != MAConst::CONTOUR_NONE)
        funnel.contours.push_back(std::move(plot.contours));
}

double MABaseModel::GroupEstimate(std::size_t group) const
{
    const MAAnalysisState& results = Results();
    if (HasCumulativeValues())
        return group < results.cumulative.steps.size() && !results.cumulative.steps[group].empty()
                   ? results.cumulative.steps[group].back().effect.estimate
                   : KXMV::Missing();
    return group < results.lists.rows.size() ? results.lists.rows[group].effect.estimate : KXMV::Missing();
}

void MABaseModel::CalcFunnelPlotY(const std::vector<double>& variances, bool withoutContour)
{
    MAFunnelRows& funnel = State().funnel;
    funnel.y.push_back(FunnelHeights(variances, settings_->GetFunnelYType()));
    if (!withoutContour)
        funnel.yMax.push_back(LargestHeight(funnel.y.back()));
}

/// The imputed studies are the last row of the funnel plot, without a contour of their own.
void MABaseModel::AppendImputedToFunnel()
{
    if (!settings_->GetIsTRIMFILL() || PoolsTables())
        return;
    State().funnel.x.push_back(Results().trimFill.imputed.effectSize);
    CalcFunnelPlotY(Results().trimFill.imputed.variance, true);
}

KXStatus MABaseModel::BubblePlot(MultiPassRecordIter& records, const KXVarList& variables,
                                 const MARegSettings& settings)
{
    return Guarded(status_, [&] {
        const MAAnalysisState& results = Results();
        MABubblePlots bubbles =
            PlotBubbles(records, variables, settings, results.studies, results.counts.records, *settings_,
                        results.settings.run.modelType);
        AddWarningsOfFigures(bubbles.warnings);
        for (MABubbleRows& plot : bubbles.plots)
            State().bubbles.push_back(std::move(plot));
        return bubbles.status.IsError() ? status_ = bubbles.status : KXStatus();
    });
}

} // namespace MA_NAMESPACE
