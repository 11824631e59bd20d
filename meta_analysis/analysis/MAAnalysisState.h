#pragma once

#include "meta_analysis/analysis/models/MAPool.h"
#include "meta_analysis/analysis/steps/MABubbleRows.h"
#include "meta_analysis/analysis/steps/MAContrasts.h"
#include "meta_analysis/analysis/steps/MAGalbraithPlot.h"
#include "meta_analysis/analysis/steps/MAGroupMeansTest.h"
#include "meta_analysis/analysis/steps/MALabbePlot.h"
#include "meta_analysis/analysis/steps/MARankTest.h"
#include "meta_analysis/analysis/steps/MASmallStudyTests.h"
#include "meta_analysis/analysis/steps/MASubgroups.h"
#include "meta_analysis/analysis/steps/MATrimAndFill.h"
#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/inference/MAStudyInfluence.h"

#include <optional>
#include <vector>

namespace MA_NAMESPACE {

/// How the counts of the studies were measured, and are pooled.
struct MATableMeasure
{
    MAConst::BINESTYPE measure = MAConst::BIN_ODDS_RATIO;        ///< of 2x2 tables
    MAConst::OUTCOMEMEASURE outcome = MAConst::PROPORTION_LOGIT; ///< of `MAOutcomeModel`
    MAZeroCorrection correction;                                 ///< as their effect sizes left it
    MAConst::POOLEDZEROCELLS pooledZeroCells = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
};

/// The settings that an analysis copies: the types of the model when a run starts, the others when it reads
/// studies. What is not among them is read from the host's settings when a step begins.
struct MACopiedSettings
{
    MARunSettings run;
    double alpha = 0.05; ///< 1 - confidence level
    MATableMeasure tables;
};

/// The per-model lists that hosts read. A run fills them, and operations called one by one append to them.
struct MAModelLists
{
    std::vector<MAPooledRow> rows;            ///< of the models, the effects of each
    std::vector<MAPooledModel> heterogeneity; ///< of the models whose heterogeneity is reported; only grows
    std::vector<double> tau2;                 ///< of these
    std::vector<double> weights;              ///< of all studies
    std::vector<int> groupSizes;
    std::vector<std::vector<int>> recordNumbers; ///< of the studies of each model
};

/// The subgroups of the studies.
struct MAGroups
{
    std::vector<double> values; ///< distinct, ascending
    std::vector<double>
        shownValues; ///< as hosts read them, with `MAConst::overallGroup` for the overall model
    std::vector<MASelection> members; ///< of the groups analysed, in study or cumulative order
    MABetweenGroups between;
    MAGroupMeansTest meansTest; ///< under the adjustment of Knapp and Hartung

    bool AreSeveral() const { return values.size() > 1; }
};

/// The lists of the cumulative analysis, an entry per group, and one for the model of all groups.
struct MACumulativeLists
{
    std::vector<std::vector<double>> values;
    std::vector<std::vector<MAPooledRow>> steps;
};

/// Coordinates of funnel plots, one row per plot; a row of imputed studies has x and y alone.
struct MAFunnelRows
{
    std::vector<std::vector<double>> x;
    std::vector<std::vector<double>> y;
    std::vector<std::vector<double>> lineX;
    std::vector<std::vector<double>> lineY;
    std::vector<std::vector<double>> contours;
    std::vector<double> yMax;
};

/// The small-study test of a run: the test covariate's coefficient, and the effect at standard error 0.
struct MARunTest
{
    MAEstimate effect;
    MAEstimate limit;
    int df = 0;
};

/// What trim-and-fill has found.
struct MATrimFillResults
{
    MAConst::TRIMFSIDE side = MAConst::TRIM_SIDE_AUTO; ///< trimmed last; automatic before
    int imputedCount = 0;
    MAImputedStudies imputed;
    std::optional<MAEstimate> model; ///< of all studies with the imputed ones
    bool hasRatio = false;           ///< whether the model of a ratio is shown as one
    double size = KXMV::Missing();   ///< of the model, as in `MAPooledModel`
};

/// Everything that an analysis holds: the settings copied, the studies, and the results of each step.
struct MAAnalysisState
{
    MACopiedSettings settings;
    MAStudies studies;
    MARecordCounts counts;
    std::vector<KXStatus> warnings; ///< each once, in order of first occurrence

    MAModelLists lists;
    MAGroups groups;
    std::vector<MAContrast> contrasts;
    std::vector<int> contrastStatus; ///< of the contrasts of effect sizes, not of tables
    MACumulativeLists cumulative;
    std::vector<MAPooledModel> leaveOneOut; ///< of all studies but one, an entry per study
    MAInfluenceTable influence;
    MATrimFillResults trimFill;
    MARunTest runTest;
    std::vector<MASmallStudyTest> tests;
    MARankCorrelation rankTest;
    MAFunnelRows funnel;
    std::vector<MAGalbraithPlot> galbraith;
    std::vector<std::vector<MALabbePoint>> labbe;
    std::vector<MABubbleRows> bubbles; ///< one entry per covariate
};

} // namespace MA_NAMESPACE
